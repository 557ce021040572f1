#!/usr/bin/env bash
# ./run and ./test of the source $1 refuse what they do not know before they do anything, write no escapes to a terminal that has
# none, and wait for a package manager that is at work.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$1"

# refused <text> <command>...: ends with 2, and says so.
refused() {
    local text=$1 status=0
    shift
    timeout 20 "$@" >"$work/log" 2>&1 || status=$?
    [ "$status" = 2 ] && [[ $(<"$work/log") == *"$text"* ]] || { cat "$work/log"; fail "$* ended with $status"; }
}
refused "one lesson at a time" ./run one.lesson another.lesson
refused "takes no lesson" ./run --serve one.lesson
refused "unknown option" ./run --server
refused "takes a number" ./run --learners many
refused "takes an address" ./run --host
refused "no option of ctest's" ./test tst_Lzma
refused "--qt takes 5 or 6" ./run --qt
refused "--qt takes 5 or 6" ./test --qt 7

# on_terminal <TERM>: what the steps of a set-up write there.
on_terminal() {
    TERM=$1 NO_COLOR='' script --quiet --return --command \
        "bash -c '. scripts/setup.sh; step Building; quietly echo as it goes'" /dev/null </dev/null
}
[[ $(on_terminal dumb) == *Building* && $(on_terminal dumb) != *$'\e'* ]] || fail "escapes for a terminal without"
[[ $(on_terminal xterm) == *$'\e'*Building* ]] || fail "no escapes for a terminal that has them"

# shellcheck source-path=SCRIPTDIR source=../../scripts/setup.sh
. scripts/setup.sh
locked_once() { [ -e "$work/tried" ] || { touch "$work/tried"; echo "E: Could not get lock" >&2; return 100; }; }
[[ $(patiently locked_once) == *Waiting* ]] || fail "the lock is not waited for"
broken() { echo "E: Unable to locate package" >&2; return 100; }
! patiently broken 2>"$work/log" || fail "an error is taken for a lock"
