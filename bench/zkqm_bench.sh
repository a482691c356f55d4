#!/usr/bin/env bash
# Per-call cost of the exit through zkqm: a put/get loop run without any
# exit, with an exit that does nothing (what zkqm spends on calling an exit
# at all), then with wz in four settings, all in the same run. Reports the
# nanoseconds per ZKI call, the ratio to the run without an exit, and what
# wz adds to the exit that does nothing.
#
# Then the same loop with 1 KB text messages, again without an exit and with
# the exit that does nothing, and with wz showing everything (message data
# dumped whole, structures field by field), once with the parsed view of the
# message data and once without. For these two it also reports the bytes of
# trace per ZKI call, the trace text written per second of the time wz adds,
# and, measured in the same run, how fast plain write() calls put the same
# number of bytes into a new file of the same directory, in chunks of the
# size of the exit's write buffer.
#
# The runs go in rounds: each round runs every case once (each 1 KB wz run
# followed by its write() run), so that whatever else the machine does falls
# on all cases alike. Each case keeps its best (smallest) time of RUNS.
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
large=1024         # bytes of message data in the second loop
write_buffer=10000 # WriteBufferSize when wz.def does not set it

# The loop with a message of the given data (`text="..."` or `size=N`).
write_scenario() {
  cat > "$1" <<SCN
qmgr ZKQM1
define qlocal BENCH.Q maxdepth=100000
connection c appl=/opt/app/bin/bench user=bench
connect c
open c q BENCH.Q options=OUTPUT+INPUT_SHARED
repeat $loops quiet {
  put c q $2
  get c q
}
close c q
disconnect c
SCN
}
write_scenario "$work/loop.scn" 'text="benchmark message"'
write_scenario "$work/loop1k.scn" "size=$large"
cat > "$work/qm.ini" <<INI
ApiExitLocal:
  Name=wz
  Sequence=1
  Function=wzEntry
  Module=$lib
  Data=$data
INI
sed -e "s|Function=wzEntry|Function=NullEntry|" -e "s|$lib|$nulllib|" "$work/qm.ini" > "$work/null.ini"

# Everything shown: whole message data, structures field by field, no
# limits; MaxFileSize at its top, so that the trace of a long loop stays in
# one file (the sum below counts rotated files anyway).
all='WriteAfterEachApi=no\nShowParsedData=yes\nShowMaxLenPut=-1\nShowMaxLenGet=-1\nShowMaxLenParsedContent=-1\nShowMaxLenCharv=-1\nShowMaxLenCharvString=-1\nMaxFileSize=2000000000\n'

# The cases: name | scenario | exit (none, null, wz) | its wz.def
cases=(
  "no exit (--no-exit)|loop|none|"
  "exit that does nothing|loop|null|"
  "(a) ExecFlag=no|loop|wz|ExecFlag=no\nCreateEmptyFile=no\n"
  "(b) queue not selected|loop|wz|TargetQueue=OTHER.Q\n"
  "(c) ShowSummaryOnly=yes|loop|wz|ShowSummaryOnly=yes\nWriteAfterEachApi=no\n"
  "(d) whole records|loop|wz|WriteAfterEachApi=no\n"
  "no exit, $large-byte messages|loop1k|none|"
  "exit that does nothing, $large-byte messages|loop1k|null|"
  "(e) everything shown, 1 KB|loop1k|wz|${all}ShowParsedMsgContent=yes\n"
  "(f) ShowParsedMsgContent=no, 1 KB|loop1k|wz|${all}ShowParsedMsgContent=no\n"
)
first_large=6 # the cases from here on run the 1 KB loop

# Bytes of all trace files in the exit data directory (rotated ones too).
trace_bytes() {
  local total=0 f
  for f in "$data"wz_*; do
    if [ -f "$f" ]; then total=$((total + $(stat -c %s "$f"))); fi
  done
  echo "$total"
}

# write() alone: BYTES bytes in calls of CHUNK bytes into a new file, timed
# inside the program (so that neither its start nor a read of the bytes
# counts); prints nanoseconds.
cat > "$work/raw_write.c" <<'C'
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <unistd.h>
int main(int argc, char **argv) {
  long long bytes = atoll(argv[2]);
  long chunk = atol(argv[3]);
  char *text = malloc((size_t)chunk);
  int fd = open(argv[1], O_WRONLY | O_CREAT | O_TRUNC, 0640);
  if (text == NULL || fd < 0) {
    perror(argv[1]);
    return 1;
  }
  memset(text, 'x', (size_t)chunk);
  struct timeval start, end;
  gettimeofday(&start, NULL);
  for (long long done = 0; done < bytes; done += chunk) {
    size_t n = (size_t)(bytes - done < chunk ? bytes - done : chunk);
    if (write(fd, text, n) != (ssize_t)n) {
      perror("write");
      return 1;
    }
  }
  gettimeofday(&end, NULL);
  close(fd);
  printf("%lld\n", ((end.tv_sec - start.tv_sec) * 1000000LL + (end.tv_usec - start.tv_usec)) * 1000);
  return 0;
}
C
"${CC:-cc}" -O2 -o "$work/raw_write" "$work/raw_write.c"

# Wall time of one command, in nanoseconds, into `elapsed`.
time_once() {
  local start end
  start=$(date +%s%N)
  "$@"
  end=$(date +%s%N)
  elapsed=$((end - start))
}

best=()  # best time of each case
bytes=() # trace bytes of each 1 KB wz case
raw=()   # best time of write() of those bytes
for i in "${!cases[@]}"; do best[i]=0 bytes[i]=0 raw[i]=0; done
for _ in $(seq "$runs"); do
  for i in "${!cases[@]}"; do
    IFS='|' read -r _ scenario kind parameters <<< "${cases[i]}"
    case $kind in
      none) options=(--no-exit) ;;
      null) options=(--ini "$work/null.ini" --no-check) ;;
      *) options=(--ini "$work/qm.ini" --no-check)
         printf '%b' "$parameters" > "$data/wz.def" ;;
    esac
    rm -f "$data"wz_* "$data"alert*
    time_once "$zkqm" "${options[@]}" --scenario "$work/$scenario.scn" --log /dev/null
    if [ "${best[i]}" -eq 0 ] || [ "$elapsed" -lt "${best[i]}" ]; then best[i]=$elapsed; fi
    if [ "$kind" = wz ] && [ "$i" -ge "$first_large" ]; then
      bytes[i]=$(trace_bytes)
      rm -f "$data"wz_*
      # The same bytes by write() alone, a write buffer at a time, into a
      # new file beside the trace.
      elapsed=$("$work/raw_write" "$data"raw_write "${bytes[i]}" "$write_buffer")
      rm -f "$data"raw_write
      if [ "${raw[i]}" -eq 0 ] || [ "$elapsed" -lt "${raw[i]}" ]; then raw[i]=$elapsed; fi
    fi
  done
done
rm -f "$data"wz_* "$data"alert*

calls=$((2 * loops))
per_call() { echo "$1 / $calls" | bc -l; }
printf '%-44s %12s %8s %14s\n' "setting" "ns/call" "ratio" "wz adds ns"
for i in "${!cases[@]}"; do
  IFS='|' read -r name _ kind _ <<< "${cases[i]}"
  if [ "$i" -lt "$first_large" ]; then base=0 empty=1; else base=$first_large empty=$((first_large + 1)); fi
  ratio=$(echo "${best[i]} / ${best[base]}" | bc -l)
  if [ "$kind" = wz ]; then
    printf '%-44s %12.1f %8.3f %14.1f\n' "$name" "$(per_call "${best[i]}")" "$ratio" \
      "$(per_call "(${best[i]} - ${best[empty]})")"
  else
    printf '%-44s %12.1f %8.3f %14s\n' "$name" "$(per_call "${best[i]}")" "$ratio" "-"
  fi
done

echo
printf '%-34s %10s %12s %10s %12s %12s %7s\n' "setting" "bytes/call" "trace bytes" \
  "trace MB/s" "write() ns" "write() MB/s" "ratio"
empty=${best[first_large + 1]}
for i in "${!cases[@]}"; do
  IFS='|' read -r name _ kind _ <<< "${cases[i]}"
  if [ "$kind" != wz ] || [ "$i" -lt "$first_large" ]; then continue; fi
  added=$((best[i] - empty))
  # MB/s = bytes / 1e6 / (ns / 1e9) = bytes * 1000 / ns
  raw_rate=$(echo "${bytes[i]} * 1000 / ${raw[i]}" | bc -l)
  if [ "$added" -le 0 ]; then
    printf '%-34s %10.0f %12d %10s %12d %12.0f %7s\n' "$name" \
      "$(echo "${bytes[i]} / $calls" | bc -l)" "${bytes[i]}" "-" "${raw[i]}" "$raw_rate" "-"
    continue
  fi
  trace_rate=$(echo "${bytes[i]} * 1000 / $added" | bc -l)
  printf '%-34s %10.0f %12d %10.0f %12d %12.0f %7.3f\n' "$name" \
    "$(echo "${bytes[i]} / $calls" | bc -l)" "${bytes[i]}" "$trace_rate" "${raw[i]}" "$raw_rate" \
    "$(echo "$trace_rate / $raw_rate" | bc -l)"
done
