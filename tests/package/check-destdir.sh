#!/usr/bin/env bash
# The build $1 of the source $2 installs below DESTDIR and nowhere else, whole, and with no path of this machine in it.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build=$1 source=$2 stage=$work/stage
DESTDIR=$stage cmake --install "$build" --prefix "$work/final" >/dev/null
[ ! -e "$work/final" ] || fail "something was installed outside DESTDIR"
prefix=$stage$work/final

headers=$(folder_of "$prefix" PresenterClient)
for file in client/PresenterClient.h calyxclient_export.h calyxclient_version.h; do
    [ -f "$headers/$file" ] || fail "$file is missing"
done
lib=$(folder_of "$prefix" lib$LIBRARY.so)
soname=$(readelf -d "$lib/lib$LIBRARY.so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[[ $soname =~ ^lib$LIBRARY\.so\.[0-9]+$ ]] || fail "the soname is not versioned: $soname"
version=$(PKG_CONFIG_PATH=$lib/pkgconfig pkg-config --modversion "$LIBRARY")
[ "$(readlink "$lib/lib$LIBRARY.so")" = "$soname" ] || fail "lib$LIBRARY.so does not lead to $soname"
[ "$(readlink "$lib/$soname")" = "lib$LIBRARY.so.$version" ] || fail "$soname does not lead to version $version"

# Debug information names the sources; nothing else may.
! grep -rIlF -e "$source" -e "$build" -e "$work" "$prefix" || fail "these files name folders of this machine"
for binary in "$lib/lib$LIBRARY.so" "$prefix/bin/calyx-presenter"; do
    [ ! -e "$binary" ] || ! readelf -d "$binary" | grep -E 'R(UN)?PATH.*(\[|:)/' || fail "$binary has an absolute run path"
done

cmake_host "$here/cmake" -DCMAKE_PREFIX_PATH="$prefix"
[ ! -e "$prefix/bin/calyx-presenter" ] || "$prefix/bin/calyx-presenter" --version >/dev/null
