#!/usr/bin/env bash
# The source $1 builds as a static library, which hosts link by CMake, pkg-config and qmake: installed into a folder
# with a blank in its name, moved after the installation. The library in the build tree serves as well.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build="$work/static build"
cmake -S "$1" -B "$build" -G Ninja "${quick[@]}" -DCALYXCLIENT_QT="$QT" -DBUILD_SHARED_LIBS=OFF -DCALYXCLIENT_BUILD_TESTS=OFF \
    -DCALYXCLIENT_BUILD_PRESENTER=OFF >/dev/null
cmake --build "$build" --parallel 2 >"$work/log" 2>&1 || { cat "$work/log"; fail "the static library does not build"; }
cmake_host "$here/cmake" -DCalyxClient_DIR="$build"

install_moved "$build"
[ -z "$(find "$prefix" -name '*.so*')" ] || fail "a shared library is installed too"
rm -r "$build" "$work/cmake build"
cmake_host "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix"
PKG_CONFIG_PATH=$(folder_of "$prefix" "$LIBRARY.pc") make_host
qmake_host pri PRI="$(folder_of "$prefix" "$LIBRARY.pri")/$LIBRARY.pri"

cannot_configure "The QML module needs the shared library" "$1" -DCALYXCLIENT_QT="$QT" -DBUILD_SHARED_LIBS=OFF \
    -DCALYXCLIENT_BUILD_QML=ON -DCALYXCLIENT_BUILD_PRESENTER=OFF
