#!/bin/sh
# System calls per ZKI call of wz_exit_bench in each setting, counted by
# strace as the difference between a run of 2N and a run of N calls (so the
# start-up's calls are left out), listed by system call.
#
#   bench/syscalls.sh [BUILD_DIR] [N] [SETTINGS]
set -eu
build=${1:-build}
n=${2:-2000}
settings=${3:-"a b c d e"}
bench="$build/bin/wz_exit_bench"
command -v strace >/dev/null || { echo "strace is needed (scripts/install-deps.sh bench)" >&2; exit 2; }
[ -x "$bench" ] || { echo "$bench not found: run make build first" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Prints "name count" for every system call of the 32-bit process.
count() {
  strace -f -c -o "$work/out" "$bench" "$1" "$2" >/dev/null 2>&1
  sed -n '/32 bit mode/,$p' "$work/out" |
    awk '$1 ~ /^[0-9.]+$/ && $NF != "total" { print $NF, $4 }'
}
for s in $settings; do
  count "$n" "$s" | sort >"$work/one"
  count $((2 * n)) "$s" | sort >"$work/two"
  per=$(join -a 2 -e 0 -o 0,1.2,2.2 "$work/one" "$work/two" |
    awk -v n="$n" '{ d = ($3 - $2) / n; if (d >= 0.01) printf " %s %.2f", $1, d }')
  echo "$s:${per:- none}"
done
