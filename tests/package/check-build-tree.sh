#!/usr/bin/env bash
# A host finds the library in the build tree $1, where nothing is installed.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cmake_host "$here/cmake" -DCalyxClient_DIR="$1"
ldd "$work/cmake build/outside-host" >"$work/log"
grep -q "lib$LIBRARY.so.* => $1/" "$work/log" || fail "another library was found"
