# Sourced by run and test: finds out what this machine lacks, installs it, and builds.
# shellcheck shell=bash

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# The classroom, the learners and the host meet on loopback: a proxy must not stand in between.
unset http_proxy https_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY NO_PROXY

# A terminal that understands escape sequences.
has_escapes() { [ -t 1 ] && [ "${TERM:-dumb}" != dumb ]; }

if has_escapes && [ -z "${NO_COLOR:-}" ]; then
    bold=$'\e[1m' plain=$'\e[0m'
else
    bold='' plain=''
fi

step() { printf '%s==> %s%s\n' "$bold" "$*" "$plain"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# use_qt 5|6: what is built with that Qt, and where, and what it takes: Qt itself, what makes its translations, the
# QML module, and what reads its description off it.
use_qt() {
    case $1 in
    5)
        preset=dev
        qt_packages=(qtbase5-dev libqt5websockets5-dev qttools5-dev-tools
            qtdeclarative5-dev qtdeclarative5-dev-tools qml-module-qtquick2)
        ;;
    6)
        preset=qt6
        qt_packages=(qt6-base-dev qt6-websockets-dev qt6-l10n-tools
            qt6-declarative-dev qt6-declarative-dev-tools qml6-module-qtquick qml6-module-qtqml-models
            qml6-module-qtqml-workerscript)
        ;;
    *)
        echo "$(basename "$0"): --qt takes 5 or 6" >&2
        exit 2
        ;;
    esac
    qt=$1 build=$project/build/$preset
}
# A script that sources this takes "--qt 6" in front of its other arguments.
if [ "${1:-}" = --qt ]; then
    qt=${2:-}
    shift $(($# > 1 ? 2 : 1))
fi
use_qt "${qt-5}"

# What building and running needs, as Debian packages. The tests add theirs.
packages=(cmake ninja-build g++ pkg-config "${qt_packages[@]}" libqrencode-dev zlib1g-dev lzma-dev libedit-dev)

has_package() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

has_node() {
    command -v npm >/dev/null && command -v node >/dev/null \
        && [ "$(node -p 'Number(process.versions.node.split(".")[0]) >= 18')" = true ]
}

# Runs a command of the package manager quietly. While another holds one of its locks (a run beside this one, upgrades in
# the background), it is tried again, for half an hour.
patiently() {
    local errors told='' end=$((SECONDS + 1800))
    errors=$(mktemp)
    until "$@" >/dev/null 2>"$errors"; do
        if [ "$SECONDS" -gt "$end" ] || ! grep -qE 'Could not get lock|Unable to (lock|acquire)' "$errors"; then
            cat "$errors" >&2
            rm -f "$errors"
            return 1
        fi
        [ -n "$told" ] || step "Waiting for another package manager to be done"
        told=yes
        sleep 1
    done
    rm -f "$errors"
}

install_packages() {
    command -v apt-get >/dev/null \
        || fail "this machine has no apt-get. Install by hand what these Debian packages hold: $*"
    local apt=(env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get -qq)
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || fail "not root, and no sudo. Have these packages installed: $*"
        apt=(sudo "${apt[@]}")
    fi
    step "Installing packages: $*"
    patiently "${apt[@]}" update || fail "apt-get update failed. Is this machine online?"
    patiently "${apt[@]}" install -y --no-install-recommends "$@" || fail "apt-get could not install: $*"
}

install_missing_packages() {
    local missing=() package
    for package in "${packages[@]}"; do
        has_package "$package" || missing+=("$package")
    done
    has_node || missing+=(nodejs npm)
    if [ ${#missing[@]} -gt 0 ]; then
        install_packages "${missing[@]}"
    fi
}

# npm ci empties node_modules, so only after the lock file has changed.
install_node_modules() {
    local folder=$project/classroom stamp
    stamp=$folder/node_modules/.installed-lock
    cmp -s "$folder/package-lock.json" "$stamp" && return
    step "Installing the classroom's node modules"
    (cd "$folder" && npm ci --no-audit --no-fund --loglevel=error) || fail "npm ci failed in classroom/"
    cp "$folder/package-lock.json" "$stamp"
}

# Runs a command quietly; its output is shown when it fails. On a terminal the last line shows as it goes.
quietly() {
    local log
    log=$(mktemp)
    if has_escapes; then
        "$@" 2>&1 | tee "$log" | while IFS= read -r line; do printf '\r\e[K%s' "${line:0:${COLUMNS:-80}}"; done
        local status=${PIPESTATUS[0]}
        printf '\r\e[K'
    else
        "$@" >"$log" 2>&1
        local status=$?
    fi
    [ "$status" = 0 ] || cat "$log"
    rm -f "$log"
    return "$status"
}

# configure and build: everything, or the targets named.
build_project() {
    if [ ! -f "$build/build.ninja" ]; then
        step "Configuring"
        local options
        read -ra options <<<"${CALYXCLIENT_CONFIGURE:-}"
        (cd "$project" && quietly cmake --preset "$preset" "${options[@]}") || fail "cmake could not configure the project"
    fi
    step "Building"
    local targets=()
    [ $# = 0 ] || targets=(--target "$@")
    quietly cmake --build "$build" "${targets[@]}" || fail "the build failed"
}
