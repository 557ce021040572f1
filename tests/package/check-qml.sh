#!/usr/bin/env bash
# A host in QML finds the module of the installed build $1: in a folder with a blank in its name, moved after the installation.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_moved "$1"
cmake_host "$here/qml" -DCMAKE_PREFIX_PATH="$prefix"
types=$(folder_of "$prefix" plugins.qmltypes)/plugins.qmltypes
for type in Lesson Poll Assessment Roster PollResults Deck LessonError PollType OrdinalType; do
    grep -q "exports: \[\"Calyx/$type 1.0\"\]" "$types" || fail "$type is not described"
done
rm "$(dirname "$types")/qmldir"
cannot_configure "Component missing: qml" "$here/qml" -DCMAKE_PREFIX_PATH="$prefix"
