#!/bin/sh
# Instructions per call, counted by callgrind as the difference between a
# run of 2N and a run of N calls, so that start-up and the first file
# opening are left out. Unlike wall-clock times these counts do not depend
# on what else the machine is doing.
#
#   bench/instructions.sh [BUILD_DIR] [N] [SETTINGS]
#
# SETTINGS: a to e are the settings of wz_exit_bench (per ZKI call, before
# and after); f1 to f9 the rows of wz_format_bench (per formatting call).
set -eu
build=${1:-build}
n=${2:-20000}
settings=${3:-"a b c d e f1 f2 f3 f4 f5 f6 f7 f8 f9"}
bench="$build/bin/wz_exit_bench"
format="$build/bin/wz_format_bench"
command -v valgrind >/dev/null || { echo "valgrind is needed (apt-get install valgrind)" >&2; exit 2; }
[ -x "$bench" ] || { echo "$bench not found: run make build first" >&2; exit 2; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
count() {
  case $2 in
  f*) set -- "$format" --calls "$1" "${2#f}" ;;
  *) set -- "$bench" "$1" "$2" ;;
  esac
  valgrind --tool=callgrind --callgrind-out-file="$work/out" "$@" >/dev/null 2>"$work/log" ||
    { cat "$work/log" >&2; exit 1; }
  sed -n 's/^summary: *//p' "$work/out"
}
for s in $settings; do
  one=$(count "$n" "$s")
  two=$(count $((2 * n)) "$s")
  echo "$s $(( (two - one) / n ))"
done
