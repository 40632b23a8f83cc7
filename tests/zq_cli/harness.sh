#!/usr/bin/env bash
# Runs one end-to-end script of the zq tool:
#   harness.sh ZQ_BINARY SCRIPT
# The script runs in a fresh temporary folder that is also the prefix, with
# these helpers:
#   run STATUS ARGS...    runs zq ARGS (stdin passed on), expects the exit
#                         STATUS; its output is in $out and $err
#   has TEXT              $out contains TEXT
#   err_has TEXT          $err contains TEXT
#   out_is TEXT           $out is exactly TEXT
#   check DESCRIPTION CMD runs CMD, a failure if it fails
# The harness exits 1 when any check failed, naming each failure.
set -uo pipefail
zq_binary=$1
script=$2

work=$(mktemp -d "${TMPDIR:-/tmp}/zq_cli.XXXXXX")
trap 'rm -rf "$work"' EXIT
export ZQ_PREFIX="$work/prefix"
unset ZQ_WINVER ZQ_DEBUG
cd "$work"

failures=0
last="(none)"
out=""
err=""

fail() {
    echo "FAILED: $1" >&2
    echo "  command: zq $last" >&2
    echo "  stdout: $out" | head -20 >&2
    echo "  stderr: $err" | head -20 >&2
    failures=$((failures + 1))
}

zq() { "$zq_binary" "$@"; }

run() {
    local expected=$1
    shift
    last="$*"
    "$zq_binary" "$@" >"$work/.out" 2>"$work/.err"
    local status=$?
    out=$(cat "$work/.out")
    err=$(cat "$work/.err")
    if [ "$status" -ne "$expected" ]; then
        fail "exit status $status, expected $expected"
    fi
}

has() { [[ "$out" == *"$1"* ]] || fail "stdout lacks: $1"; }
lacks() { [[ "$out" != *"$1"* ]] || fail "stdout has: $1"; }
err_has() { [[ "$err" == *"$1"* ]] || fail "stderr lacks: $1"; }
out_is() { [ "$out" = "$1" ] || fail "stdout is not: $1"; }
check() {
    local description=$1
    shift
    "$@" || fail "$description"
}

# shellcheck source=/dev/null
source "$script"

if [ "$failures" -ne 0 ]; then
    echo "$failures check(s) failed in $(basename "$script")" >&2
    exit 1
fi
echo "all checks passed in $(basename "$script")"
