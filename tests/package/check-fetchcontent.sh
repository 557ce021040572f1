#!/usr/bin/env bash
# A host fetches an archive of the source $1 with FetchContent and builds the library with itself.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

tar -C "$1" --exclude='./.git' --exclude='./build*' --exclude=node_modules -czf "$work/calyxclient.tar.gz" .
cmake_host "$here/fetchcontent" -DCALYXCLIENT_QT="$QT" -DARCHIVE="$work/calyxclient.tar.gz"
