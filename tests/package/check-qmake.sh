#!/usr/bin/env bash
# A host finds the installed build $1 with qmake: by calyxclient.pri in a folder with a blank in its name, moved after
# the installation; by pkg-config in a folder without, as qmake cuts what pkg-config answers at blanks.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_moved "$1"
LD_LIBRARY_PATH=$(folder_of "$prefix" "lib$LIBRARY.so.?") \
    qmake_host pri PRI="$(folder_of "$prefix" "$LIBRARY.pri")/$LIBRARY.pri"

mv "$prefix" "$work/moved-again"
PKG_CONFIG_PATH=$(folder_of "$work/moved-again" "$LIBRARY.pc")
LD_LIBRARY_PATH=$(folder_of "$work/moved-again" "lib$LIBRARY.so.?")
export PKG_CONFIG_PATH LD_LIBRARY_PATH
qmake_host pkgconfig
