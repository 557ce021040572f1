#!/usr/bin/env bash
# Makes the API reference by the Doxyfile $1 in a temporary folder: Doxygen must warn of nothing, every enumerator must
# be documented (which Doxygen does not look at), and the Qt help collection must be one. $2 is node.
set -euo pipefail

doxyfile=$1 node=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

command -v doxygen >/dev/null || { echo "install doxygen" >&2; exit 1; }
command -v qhelpgenerator >/dev/null || { echo "install qttools5-dev-tools" >&2; exit 1; }

{
    cat "$doxyfile"
    printf '%s\n' "OUTPUT_DIRECTORY = \"$work\"" "GENERATE_XML = YES" "XML_PROGRAMLISTING = NO"
} >"$work/Doxyfile"
# Its own progress is noise; what it has to complain about goes to stderr.
XDG_RUNTIME_DIR=$work doxygen "$work/Doxyfile" >"$work/progress"

"$node" "$here/check-enumerators.mjs" "$work/xml"

[ "$(head -c 15 "$work/calyxclient.qch")" = "SQLite format 3" ] || {
    echo "calyxclient.qch is no Qt help collection" >&2
    exit 1
}
