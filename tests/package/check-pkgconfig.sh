#!/usr/bin/env bash
# A host finds the installed build $1 with pkg-config and make: in a folder with a blank in its name, moved after the
# installation. Then every public header is compiled, with strict warnings, without Qt's keywords, and by a host that
# has files of the same names.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_moved "$1"
PKG_CONFIG_PATH=$(folder_of "$prefix" "$LIBRARY.pc")
LD_LIBRARY_PATH=$(folder_of "$prefix" "lib$LIBRARY.so.?")
export PKG_CONFIG_PATH LD_LIBRARY_PATH
make_host

cd "$(dirname "$(folder_of "$prefix" PresenterClient)")"
find CalyxClient -type f | sort | sed 's/.*/#include <&>/' >"$work/headers.cpp"
[ "$(grep -c . "$work/headers.cpp")" -gt 50 ] || fail "the headers are not installed"
find CalyxClient -type f -printf '%P\n' | while read -r header; do
    mkdir -p "$work/host/$(dirname "$header")"
    echo '#error This is the header of the host' >"$work/host/$header"
done
make -s -C "$work" headers.o
