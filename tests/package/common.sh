# Sourced by the checks of this folder: a scratch folder, installing, and building hosts.
# shellcheck shell=bash disable=SC2034
set -euo pipefail

# The Qt of the library that is checked, and what it is called then.
: "${QT:=5}" "${PACKAGE:=CalyxClient}" "${LIBRARY:=calyxclient}"
export LIBRARY

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Nothing that is found by chance on this machine stands in for what is under test.
unset CMAKE_PREFIX_PATH CalyxClient_DIR PKG_CONFIG_PATH LD_LIBRARY_PATH DESTDIR
# The scratch folder's name must not keep ccache from knowing a file again.
export CCACHE_BASEDIR=$work CCACHE_NOHASHDIR=1

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# install_moved <build>: installs into a folder with a blank in its name, moves that, and leaves its path in $prefix.
install_moved() {
    cmake --install "$1" --prefix "$work/first place" >/dev/null
    mv "$work/first place" "$work/moved here"
    prefix="$work/moved here"
}

# Where a file of that name lies below a folder; exactly one is expected.
folder_of() {
    local found
    found=$(find "$1" -name "$2" -printf '%h\n')
    [ "$(grep -c . <<<"$found")" = 1 ] || fail "not exactly one $2 below $1: $found"
    echo "$found"
}

# What is quickest to compile.
quick=(-DCMAKE_BUILD_TYPE=None -DCMAKE_UNITY_BUILD=ON)

# cmake_host <folder of the host> <argument>...: configures, builds and runs a host.
cmake_host() {
    local host=$1 build
    shift
    build="$work/$(basename "$host") build"
    cmake -S "$host" -B "$build" -G Ninja "${quick[@]}" -DPACKAGE="$PACKAGE" "$@" >"$work/log" 2>&1 || { cat "$work/log"; return 1; }
    cmake --build "$build" --parallel 2 >"$work/log" 2>&1 || { cat "$work/log"; return 1; }
    "$build/outside-host"
}

# cannot_configure <text> <folder of the host> <argument>...: configuring fails and says so.
cannot_configure() {
    local text=$1 host=$2
    shift 2
    ! cmake -S "$host" -B "$work/refused" --fresh -DPACKAGE="$PACKAGE" "$@" >"$work/log" 2>&1 || fail "cmake accepted: $*"
    [[ $(tr -s '\n ' ' ' <"$work/log") == *"$text"* ]] || { cat "$work/log"; fail "cmake does not say: $text"; }
}

# make_host <argument>...: builds the host of pkgconfig/ with make, and runs it.
make_host() {
    cp "$here/main.cpp" "$here/pkgconfig/Makefile" "$work"
    make -s -C "$work" "$@"
    "$work/outside-host"
}

qmake=(qmake -qt=qt5)
[ "$QT" = 5 ] || qmake=(qmake6)

# qmake_host <name> <assignment>...: builds the host of qmake/ with the assignments before its lines, and runs it.
qmake_host() {
    local folder="$work/qmake $1"
    shift
    mkdir -p "$folder"
    cp "$here/main.cpp" "$here/qmake/outside-host.pro" "$folder"
    (cd "$folder" && "${qmake[@]}" LIBRARY="$LIBRARY" "$@" outside-host.pro >/dev/null && make -s)
    "$folder/outside-host"
}
