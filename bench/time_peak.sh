#!/usr/bin/env bash
# Runs a command with its output to /dev/null and prints its wall time and CPU time (user and
# system) in seconds and its peak resident memory in kilobytes, as getrusage gives them to
# /usr/bin/time.
set -euo pipefail
report=$(mktemp)
trap 'rm -f "$report"' EXIT
/usr/bin/time -f '%e %U %S %M' -o "$report" "$@" >/dev/null 2>&1
cat "$report"
