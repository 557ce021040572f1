#!/usr/bin/env bash
# A host that links everything statically builds the library with itself, from the source $1.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

cmake_host "$here/subdirectory" -DCALYXCLIENT_QT="$QT" -DSOURCE="$1"
