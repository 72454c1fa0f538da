#!/usr/bin/env bash
# expect_race.sh PROGRAM: passes when ThreadSanitizer finds a race in PROGRAM and ends it with the status asked for.

set -euo pipefail

expected=66
status=0
report=$(TSAN_OPTIONS="${TSAN_OPTIONS:-}:halt_on_error=1:exitcode=$expected" "$1" 2>&1) || status=$?
if [ "$status" -ne "$expected" ] || ! grep -q 'WARNING: ThreadSanitizer: data race' <<<"$report"; then
    echo "$report"
    echo "expect_race: exit status $status instead of $expected, or no report of a data race"
    exit 1
fi
echo "expect_race: found"
