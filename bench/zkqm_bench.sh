#!/usr/bin/env bash
# Per-call cost of the exit through zkqm: a put/get loop run without any
# exit, with an exit that does nothing (what zkqm spends on calling an exit
# at all), then with wz in four settings, all in the same run. Reports the
# nanoseconds per ZKI call, the ratio to the run without an exit, and what
# wz adds to the exit that does nothing.
# Usage: bench/zkqm_bench.sh [BUILD_DIR] [LOOPS] [RUNS]
set -euo pipefail
build=${1:-build}
loops=${2:-50000}
runs=${3:-5}
zkqm="$build/bin/zkqm"
lib="$(cd "$build/lib" && pwd)/libwz.so"
nulllib="$(cd "$build/lib" && pwd)/libwz_null_exit.so"
work=$(mktemp -d /tmp/wzb.XXXXXX)
trap 'rm -rf "$work"' EXIT
data="$work/d/" # the exit data: at most 32 characters
mkdir -p "$data"

cat > "$work/loop.scn" <<SCN
qmgr ZKQM1
define qlocal BENCH.Q maxdepth=100000
connection c appl=/opt/app/bin/bench user=bench
connect c
open c q BENCH.Q options=OUTPUT+INPUT_SHARED
repeat $loops quiet {
  put c q text="benchmark message"
  get c q
}
close c q
disconnect c
SCN
cat > "$work/qm.ini" <<INI
ApiExitLocal:
  Name=wz
  Sequence=1
  Function=wzEntry
  Module=$lib
  Data=$data
INI
sed -e "s|Function=wzEntry|Function=NullEntry|" -e "s|$lib|$nulllib|" "$work/qm.ini" > "$work/null.ini"

# Best (smallest) wall time of RUNS runs, in nanoseconds.
best_ns() {
  local best=0 start end elapsed
  for _ in $(seq "$runs"); do
    rm -f "$data"wz_* "$data"alert*
    start=$(date +%s%N)
    "$zkqm" "$@" --scenario "$work/loop.scn" --log /dev/null
    end=$(date +%s%N)
    elapsed=$((end - start))
    if [ "$best" -eq 0 ] || [ "$elapsed" -lt "$best" ]; then best=$elapsed; fi
  done
  echo "$best"
}

calls=$((2 * loops))
baseline=$(best_ns --no-exit)
empty=$(best_ns --ini "$work/null.ini" --no-check)
per_call() { echo "$1 / $calls" | bc -l; }
printf '%-28s %12s %8s %14s\n' "setting" "ns/call" "ratio" "wz adds ns"
printf '%-28s %12.1f %8.3f %14s\n' "no exit (--no-exit)" "$(per_call "$baseline")" 1 "-"
printf '%-28s %12.1f %8.3f %14s\n' "exit that does nothing" "$(per_call "$empty")" \
  "$(echo "$empty / $baseline" | bc -l)" "-"
while IFS='|' read -r name parameters; do
  printf '%b' "$parameters" > "$data/wz.def"
  t=$(best_ns --ini "$work/qm.ini" --no-check)
  printf '%-28s %12.1f %8.3f %14.1f\n' "$name" "$(per_call "$t")" \
    "$(echo "$t / $baseline" | bc -l)" "$(per_call "($t - $empty)")"
done <<'SETTINGS'
(a) ExecFlag=no|ExecFlag=no\nCreateEmptyFile=no\n
(b) queue not selected|TargetQueue=OTHER.Q\n
(c) ShowSummaryOnly=yes|ShowSummaryOnly=yes\nWriteAfterEachApi=no\n
(d) full header records|WriteAfterEachApi=no\n
SETTINGS
