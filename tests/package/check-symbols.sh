#!/usr/bin/env bash
# The library $1 of the source $2, built in $3, exports what its list in packaging/debian holds, neither less
# nor more, and nothing but the classes and functions of public headers. packaging/update-symbols rewrites the list.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

library=$1 source=$2 build=$3
kept=$(grep -lx "$(basename "$(realpath "$library")" | cut -d. -f1-3) .*" "$source"/packaging/debian/*.symbols) || fail "no list"

# Without optimisation the standard library's templates are not inlined, and are exported, whatever we say.
nm -D --defined-only --format=posix "$library" | cut -d ' ' -f 1 | grep -vE '^_ZN?K?(St|9__gnu_cxx)' | c++filt | sort -u >"$work/exported"
[ -s "$work/exported" ] || fail "nm finds no symbol in $library"
sed -nE 's/^ \(c\+\+\)"(.*)@Base" .*/\1/p' "$kept" | sort -u >"$work/kept"
diff -U0 --label "$kept" --label "$library" "$work/kept" "$work/exported" \
    || fail "the exported symbols have changed. If that is meant: packaging/update-symbols $library"

# The names that have a forwarding header, and the functions that come with two of the value types.
find "$build/include/CalyxClient" -maxdepth 1 -type f ! -name '*.h' -printf '%f\n' >"$work/public"
printf '%s\n' registerLearner registerRemoteControlMessage >>"$work/public"
sed -E 's/^(typeinfo for|typeinfo name for|vtable for|non-virtual thunk to) //; s/^Calyx:://; s/[:(].*//' \
    "$work/exported" | sort -u >"$work/names"
sort -u "$work/public" | comm -23 "$work/names" - >"$work/private"
[ ! -s "$work/private" ] || fail "exported, but in no public header: $(tr '\n' ' ' <"$work/private")"
