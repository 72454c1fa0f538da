#!/usr/bin/env bash
# Tests of ./dev: its verbs, and the installing of packages on a machine played by stand-ins for dpkg-query, apt-get, id
# and sudo.

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$work/project/tools" "$work/bin"
cp "$root/dev" "$work/project/"
cp -r "$root/tools/dev" "$work/project/tools/"

# shellcheck disable=SC2016  # the bodies expand when they run
stand_in()
{
    printf '#!/usr/bin/env bash\n%s\n' "$2" >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}

stand_in dpkg-query 'for package in $FAKE_INSTALLED; do echo "installed $package"; done; exit 1'
stand_in apt-get 'echo "apt-get $*" >>"$FAKE_CALLS"; echo "front end: $DEBIAN_FRONTEND"; exit "${FAKE_APT_STATUS:-0}"'
stand_in sudo 'echo "sudo" >>"$FAKE_CALLS"; exec "$@"'
stand_in id 'echo "${FAKE_USER:-0}"'

failures=0
fail()
{
    echo "FAILED: $1"
    echo "--- output"; cat "$work/output"
    echo "--- calls"; cat "$work/calls"
    failures=$((failures + 1))
}

# run STATUS WHAT ARGUMENT...: runs ./dev and expects the exit status.
run()
{
    local expected=$1 what=$2 status=0
    shift 2
    : >"$work/calls"
    FAKE_CALLS=$work/calls PATH=$work/bin:$PATH "$work/project/dev" "$@" >"$work/output" 2>&1 || status=$?
    [ "$status" -eq "$expected" ] || fail "$what: exit status $status instead of $expected"
}

expect_output() { grep -q -- "$1" "$work/output" || fail "output lacks: $1"; }
expect_call() { grep -q -- "$1" "$work/calls" || fail "no such call: $1"; }
expect_no_call() { ! [ -s "$work/calls" ] || fail "there should be no call"; }

run 0 "help" help
for verb in setup build demo test bench windows check asan tsan fuzz help; do
    expect_output "^  $verb  "
done

run 0 "no verb prints the help"
expect_output "^Usage:"

run 2 "an unknown verb" frobnicate
expect_output "unknown verb 'frobnicate'"

run 2 "an argument too many" test fast
expect_output "takes no arguments"

run 2 "a number that is none" fuzz long
expect_output "takes one number above 0"

# shellcheck source=tools/dev/packages.sh
source "$root/tools/dev/packages.sh"
all="${BUILD_PACKAGES[*]} ${CHECK_PACKAGES[*]} ${WINDOWS_PACKAGES[*]}"

export FAKE_INSTALLED=$all
run 0 "nothing missing" setup
expect_no_call

FAKE_INSTALLED=${all/libassimp-dev /}
run 0 "one package missing" setup
expect_call "^apt-get update$"
expect_call "^apt-get install --yes --no-install-recommends libassimp-dev$"
! grep -q sudo "$work/calls" || fail "root needs no sudo"

FAKE_USER=1000 run 0 "one package missing, not root" setup
expect_call "^sudo$"
expect_call "^apt-get install"

FAKE_APT_STATUS=100 run 100 "apt-get fails" setup
expect_output "step 'update the package lists' failed (exit status 100)"
expect_output "build/logs/update-the-package-lists.log"
expect_output "front end: noninteractive"

[ "$failures" -eq 0 ] && echo "dev_test: all passed"
exit "$failures"
