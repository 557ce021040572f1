#!/usr/bin/env bash
# Hosts find the installed build $1 with CMake: in a folder with a blank in its name, moved after the installation.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_moved "$1"
cmake_host "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCOMPONENTS="calyxclient;calyx-presenter"
grep -q "^calyx-presenter [0-9]" "$work/cmake build/presenter-version" || fail "calyx-presenter does not run"

version=$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p' "$(folder_of "$prefix" "$PACKAGE"ConfigVersion.cmake)"/*Version.cmake)
for range in "0...$version" "$version...99" "0.0.1...<99"; do
    cmake -S "$here/cmake" -B "$work/range" --fresh -DPACKAGE="$PACKAGE" -DCMAKE_PREFIX_PATH="$prefix" -DVERSION="$range" >"$work/log" 2>&1 \
        || { cat "$work/log"; fail "refused: $range"; }
done
for range in "0...<$version" "98...99"; do
    cannot_configure "requested version range \"$range" "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DVERSION="$range"
done
cannot_configure "requested version \"99" "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DVERSION=99
cannot_configure "Component missing: blackboard" "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCOMPONENTS=blackboard

rm "$prefix"/bin/calyx-presenter
cannot_configure "Component missing: calyx-presenter" "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCOMPONENTS=calyx-presenter
