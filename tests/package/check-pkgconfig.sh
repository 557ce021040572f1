#!/usr/bin/env bash
# A host finds the installed build $1 with pkg-config and make: in a folder with a blank in its name, moved after the
# installation. Then every public header is compiled, with strict warnings and without Qt's keywords.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_moved "$1"
PKG_CONFIG_PATH=$(folder_of "$prefix" calyxclient.pc)
LD_LIBRARY_PATH=$(folder_of "$prefix" 'libcalyxclient.so.?')
export PKG_CONFIG_PATH LD_LIBRARY_PATH
make_host

cd "$prefix/include"
find CalyxClient -type f | sort | sed 's/.*/#include <&>/' >"$work/headers.cpp"
[ "$(grep -c . "$work/headers.cpp")" -gt 50 ] || fail "the headers are not installed"
make -s -C "$work" headers.o
