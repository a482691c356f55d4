#!/usr/bin/env bash
# Runs every libFuzzer target of a fuzzing build for a bounded time.
#
#   fuzz/run.sh BUILD_DIR SECONDS [NAME...]
#
# Each target (all of them, or the NAMEs given) runs SECONDS seconds on
# fuzz/corpus/<name>/. The inputs it finds on the way go to
# BUILD_DIR/fuzz-corpus/<name>/, not into the source tree, and a crashing
# input is saved as fuzz/crashes/<name>/<kind>-<sha1> (crash, leak,
# timeout, oom), where `make test` replays it from then on. A target that
# stops on a crash is started again for the rest of its time (up to five
# runs, and not when it found nothing new), so that one crash does not hide
# the next. The exit status is 1 when any target crashed.
set -uo pipefail

if [ $# -lt 2 ]; then
  echo "usage: $0 BUILD_DIR SECONDS [NAME...]" >&2
  exit 2
fi
build=$(cd "$1" && pwd)
seconds=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for source in "$here"/*_fuzz.cpp; do
    name=$(basename "$source" _fuzz.cpp)
    names+=("$name")
  done
fi

# A huge allocation the input asks for (a write buffer size, say) is
# answered with null, as the C library would, rather than ending the run:
# the exit must cope with memory it cannot have.
export ASAN_OPTIONS=${ASAN_OPTIONS:-allocator_may_return_null=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

status=0
for name in "${names[@]}"; do
  binary="$build/bin/wz_fuzz_$name"
  if [ ! -x "$binary" ]; then
    echo "fuzz: no target $binary" >&2
    status=1
    continue
  fi
  seeds="$here/corpus/$name"
  found="$build/fuzz-corpus/$name"
  crashes="$here/crashes/$name"
  mkdir -p "$seeds" "$found" "$crashes"
  log="$build/fuzz-$name.log"
  dict=""
  if [ -f "$here/$name.dict" ]; then
    dict="-dict=$here/$name.dict"
  fi
  : >"$log"
  end=$((SECONDS + seconds))
  runs=0
  while [ $SECONDS -lt $end ] && [ $runs -lt 5 ]; do
    runs=$((runs + 1))
    left=$((end - SECONDS))
    [ $left -ge 1 ] || break
    echo "fuzz: $name for ${left}s (run $runs)" | tee -a "$log"
    before=$(ls "$crashes")
    run_log="$build/fuzz-$name.run.log"
    "$binary" -max_total_time="$left" -timeout=25 -rss_limit_mb=2560 -max_len=65536 \
      -print_final_stats=1 -artifact_prefix="$crashes/" $dict "$found" "$seeds" >"$run_log" 2>&1
    rc=$?
    cat "$run_log" >>"$log"
    if [ $rc -eq 0 ]; then
      break
    fi
    status=1
    echo "fuzz: $name stopped with status $rc; see $log"
    grep -E "^(SUMMARY|.*check failed|artifact_prefix=)" "$run_log" | head -3 | sed 's/^/  /'
    # The same input again (a crash in the seeds, say): another run would
    # only find it once more.
    if [ "$(ls "$crashes")" = "$before" ]; then
      break
    fi
  done
  grep -E "^(#[0-9]+.*DONE|stat::number_of_executed_units|stat::peak_rss_mb)" "$log" | tail -3 |
    sed "s/^/fuzz: $name: /"
done
exit $status
