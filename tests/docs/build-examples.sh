#!/usr/bin/env bash
# Installs the build $1 with the cmake $2 into the folder $3, and builds the examples there against what is installed.
set -euo pipefail

build=$1 cmake=$2 folder=$3
examples=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../examples" && pwd)

rm -rf "$folder/prefix"
"$cmake" --install "$build" --prefix "$folder/prefix" >/dev/null
for example in minimal guide; do
    "$cmake" -S "$examples/$example" -B "$folder/$example" -DCMAKE_PREFIX_PATH="$folder/prefix" -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror"
    "$cmake" --build "$folder/$example"
done
