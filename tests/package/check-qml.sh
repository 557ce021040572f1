#!/usr/bin/env bash
# A host in QML finds the module of the installed build $1: in a folder with a blank in its name, moved after the installation.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_moved "$1"
cmake_host "$here/qml" -DCMAKE_PREFIX_PATH="$prefix"
types=$(folder_of "$prefix" plugins.qmltypes)/plugins.qmltypes
for header in "$(folder_of "$prefix" Lesson.h)"/*.h PollType.h OrdinalType.h; do
    type=$(basename "$header" .h)
    grep -q "exports: \[\"Calyx/$type 1.0\"\]" "$types" || fail "$type is not described"
done
cmake -S "$here/../../examples/slate" -B "$work/slate" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/log" 2>&1 \
    && cmake --build "$work/slate" >"$work/log" 2>&1 || { cat "$work/log"; fail "the slate does not build"; }
rm "$(dirname "$types")/qmldir"
cannot_configure "Component missing: qml" "$here/qml" -DCMAKE_PREFIX_PATH="$prefix"
