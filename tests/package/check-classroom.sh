#!/usr/bin/env bash
# A host outside the tree runs its own tests against the local classroom of the installed build $1: in a folder with a blank
# in its name, moved after the installation. Without the classroom there is nothing to test with, and CMake says so.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

export QT_LOGGING_RULES=default.debug=false
install_moved "$1"
cmake_host "$here/classroom" -DCMAKE_PREFIX_PATH="$prefix"
rm "$prefix/bin/calyx-classroom"
cannot_configure "Component missing: classroom-test" "$here/classroom" -DCMAKE_PREFIX_PATH="$prefix"
