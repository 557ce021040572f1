#!/usr/bin/env bash
# A host outside the tree runs its own tests against the local classroom of the installed build $1: in a folder with a blank
# in its name, moved after the installation. Without the classroom there is nothing to test with, and CMake says so.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

export QT_LOGGING_RULES=default.debug=false
install_moved "$1"
# The host as the guide shows it. With Qt 6 three names are others, and nothing else.
host="$work/classroom"
cp -r "$here/classroom" "$host"
[ "$QT" = 5 ] || sed -i 's/CalyxClient 0/CalyxClientQt6 0/; s/Qt5 5.15/Qt6/; s/Qt5::/Qt6::/' "$host/CMakeLists.txt"
cmake_host "$host" -DCMAKE_PREFIX_PATH="$prefix"
rm "$prefix/bin/calyx-classroom"
cannot_configure "Component missing: classroom-test" "$host" -DCMAKE_PREFIX_PATH="$prefix"
