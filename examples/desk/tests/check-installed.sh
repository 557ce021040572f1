#!/usr/bin/env bash
# The desk builds by itself against the installed build $1, whose sources are in $2.
# shellcheck source-path=SCRIPTDIR source=../../../tests/package/common.sh
. "$2/tests/package/common.sh"

install_moved "$1"
build=$work/build
cmake -S "$2/examples/desk" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_PREFIX_PATH="$prefix" >"$work/log" 2>&1 \
    && cmake --build "$build" --parallel 2 >>"$work/log" 2>&1 \
    || { cat "$work/log"; fail "the desk does not build"; }
! grep -rqsF "$2/src" "$build/build.ninja" || fail "the desk reads headers that are not installed"
[[ $(ldd "$build/desk") == *"lib$LIBRARY.so.0 => $prefix/"* ]] || fail "the desk does not run with the installed library"
