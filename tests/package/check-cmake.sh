#!/usr/bin/env bash
# Installs the build $1 with the cmake $2 into a folder with a blank in its name, moves that folder, and builds and runs
# a host against it.
set -euo pipefail

build=$1 cmake=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build" --prefix "$work/first place" >/dev/null
mv "$work/first place" "$work/moved here"
"$cmake" -S "$here/cmake" -B "$work/host" -DCMAKE_PREFIX_PATH="$work/moved here" -DCMAKE_BUILD_TYPE=Debug
"$cmake" --build "$work/host"
"$work/host/outside-host"
