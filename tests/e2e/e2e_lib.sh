# Helpers shared by the end-to-end case scripts (run_case.sh,
# trace_cases.sh, hostile_cases.sh), sourced by each of them:
#
#   HERE=$(cd "$(dirname "$0")" && pwd)
#   source "$HERE/e2e_lib.sh"
#
# The script sets case_name, ZKQM and (where the exit library is used)
# WZLIB before sourcing, then calls work_dir. The helpers that run zkqm on
# a scenario or read its output expect the files zkqm writes in the work
# directory: out.log and err.txt of the run with exits, plain.log and
# plain.err of the run without.
# shellcheck shell=bash disable=SC2154

SCN=$HERE/scenarios
EXP=$HERE/expected
MASK=$HERE/mask_trace.sh

fail() {
  echo "FAIL [$case_name]: $*" >&2
  exit 1
}

skip() {
  echo "SKIP [$case_name]: $*" >&2
  exit 77
}

need_wz() {
  [ -f "$WZLIB" ] || fail "the exit library $WZLIB has not been built"
}

# work_dir TEMPLATE: a fresh directory from the mktemp template in $WORK,
# removed at exit, and made the current directory. The exit data has room
# for 32 characters only: the template is short.
work_dir() {
  WORK=$(mktemp -d "$1") || exit 1
  trap cleanup EXIT
  cd "$WORK" || exit 1
}

cleanup() {
  # A case may leave directories without write permission behind.
  chmod -R u+rwx "$WORK" 2>/dev/null
  rm -rf "$WORK"
}

# The environment zkqm runs in: nothing but a path, the C locale and a
# fixed clock for the dates and times zkqm puts in messages. zkqm puts its
# own directory in front of the path.
RUN_ENV=(env -i PATH=/usr/bin:/bin LC_ALL=C ZKQM_CLOCK=20261124120000)

# ini_stanza NAME FUNCTION MODULE DATA [SEQUENCE]: adds an ApiExitLocal
# stanza to qm.ini.
ini_stanza() {
  {
    echo "ApiExitLocal:"
    echo "   Name=$1"
    echo "   Function=$2"
    echo "   Module=$3"
    echo "   Data=$4"
    [ $# -ge 5 ] && echo "   Sequence=$5"
  } >>qm.ini
}

# ini [DATA] [MODULE]: qm.ini with one ApiExitLocal stanza for the exit
# library, its data directory $DATA unless given.
ini() {
  rm -f qm.ini
  ini_stanza wz wzEntry "${2:-$WZLIB}" "${1:-$DATA}" 1
}

# wz_def LINE...: the data directory with a wz.def of these lines.
wz_def() {
  mkdir -p "$DATA"
  printf '%s\n' "$@" >"$DATA/wz.def"
}

# scenario_path SCENARIO: a file written by the case (in the work
# directory), or a name in scenarios/; as an absolute path, since zkqm may
# run elsewhere.
scenario_path() {
  case $1 in
  /*) echo "$1" ;;
  *) if [ -f "$WORK/$1" ]; then echo "$WORK/$1"; else echo "$SCN/$1"; fi ;;
  esac
}

# run_plain SCENARIO: the scenario without exits, in zkqm's current
# directory of the script ($RUN, else the work directory); log in
# plain.log.
run_plain() {
  local scn
  scn=$(scenario_path "$1")
  if ! (cd "${RUN:-$WORK}" && exec "${RUN_ENV[@]}" "$ZKQM" --no-exit --scenario "$scn") \
    >"$WORK/plain.log" 2>"$WORK/plain.err"; then
    cat "$WORK/plain.log" "$WORK/plain.err" >&2
    fail "zkqm without exits failed on $1"
  fi
}

expect_status() {
  [ "$status" -eq "$1" ] || {
    echo "--- log:" >&2
    cat out.log >&2
    echo "--- stderr:" >&2
    cat err.txt >&2
    fail "zkqm exit status $status, expected $1"
  }
}

# What the application sees: the log without the lines that only exits
# make. An exit that only observes leaves it exactly as it is without exits.
application_view() {
  grep -vE '^exits?[ :]|^[^ ]+ (INIT|TERM) |^[^ ]+ register |^[^ ]+   (BEFORE|AFTER) |^[^ ]+ registrations: ' "$1"
}

# same_calls SCENARIO: the calls of the last run (out.log) returned with
# the exit exactly what they return without it, and the exit changed no
# parameter.
same_calls() {
  run_plain "$1"
  if grep -q "PARAMETER CHANGED" "$WORK/out.log"; then
    fail "the exit changed a parameter: $(grep 'PARAMETER CHANGED' "$WORK/out.log" | head -3)"
  fi
  application_view "$WORK/out.log" >"$WORK/app.log"
  application_view "$WORK/plain.log" >"$WORK/want.log"
  diff -u "$WORK/want.log" "$WORK/app.log" >&2 || fail "with the exit the calls returned something else than without"
}

# same_as_expected EXPECTED FILE WHAT: the file equals expected/EXPECTED;
# WHAT names the file when it does not. With ZKQM_BLESS=1 a file that
# differs replaces its expected file instead (for a deliberate change;
# review the difference first).
same_as_expected() {
  if [ -n "${ZKQM_BLESS:-}" ] && ! cmp -s "$EXP/$1" "$2"; then
    cp "$2" "$EXP/$1"
    echo "blessed expected/$1" >&2
    return
  fi
  [ -f "$EXP/$1" ] || fail "expected/$1 is missing"
  diff -u "$EXP/$1" "$2" >&2 || fail "$3 differs from expected/$1"
}

contains() {
  grep -qF -- "$2" "$1" || {
    cat "$1" >&2
    fail "$1 lacks: $2"
  }
}

lacks() {
  if grep -qF -- "$2" "$1"; then
    cat "$1" >&2
    fail "$1 should not hold: $2"
  fi
}

# count_of FILE TEXT: how many lines of the file hold the text.
count_of() {
  grep -cF -- "$2" "$1"
}

# one_file PATTERN [DIR]: the path of the one file in the directory (the
# data directory unless given) that matches the pattern (a glob); fails
# unless there is exactly one.
one_file() {
  local dir=${2:-$DATA} files=() f
  for f in "$dir"/$1; do
    [ -e "$f" ] && files+=("$f")
  done
  [ ${#files[@]} -eq 1 ] || fail "expected one file $1 in $dir, found ${#files[@]}: $(ls "$dir")"
  echo "${files[0]}"
}

# masked FILE [TEXT=NAME...]: the file with times, process and thread ids
# and the work directory masked, for comparison (mask_trace.sh).
masked() {
  local file=$1
  shift
  bash "$MASK" "$file" "$WORK=<WORK>" "$@"
}

# wait_for SECONDS COMMAND...: polls the command every tenth of a second
# until it succeeds; 1 when it has not within the time.
wait_for() {
  local tenths=$(($1 * 10))
  shift
  while ! "$@"; do
    tenths=$((tenths - 1))
    [ "$tenths" -gt 0 ] || return 1
    sleep 0.1
  done
}

# gzip_done FILE: gzip has replaced the file with its ".gz".
gzip_done() {
  [ -f "$1.gz" ] && [ ! -e "$1" ]
}

# check_sequence FILE...: the call records of the files, taken in the order
# given, are numbered 1, 2, 3 ... with no gap and no repeat; no "suppressed"
# note stands between them; every before-record of a call (data conversion
# aside) is followed by its after-record in the same file, before the next
# before-record. Prints the last number.
check_sequence() {
  awk '
    FNR == 1 { if (open != "") { bad = bad "\n" prev ": the record of " open " has no after-record in this file"; open = "" } }
    /^\|>-- Seq # :/ { bad = bad "\n" FILENAME ":" FNR ": " $0 }
    /^\|--- Seq # : [0-9]+ -+$/ {
      n = $5 + 0
      if (n != last + 1) bad = bad "\n" FILENAME ":" FNR ": number " n " after " last
      last = n
      want_before = 1
      prev = FILENAME
      next
    }
    /^</ { fn = substr($0, 2); next }
    /^\(BEFORE$/ {
      if (fn == "DATA_CONV_ON_GET") next
      if (!want_before) bad = bad "\n" FILENAME ":" FNR ": before-record of " fn " without a number"
      if (open != "") bad = bad "\n" FILENAME ":" FNR ": " fn " begins before " open " has ended"
      open = fn
      want_before = 0
      next
    }
    /^\(AFTER$/ {
      if (fn != open) bad = bad "\n" FILENAME ":" FNR ": after-record of " fn " while " open " is open"
      open = ""
      next
    }
    END {
      if (open != "") bad = bad "\n" prev ": the record of " open " has no after-record"
      if (last == 0) bad = bad "\nno numbered record at all"
      if (bad != "") { print substr(bad, 2) > "/dev/stderr"; exit 1 }
      print last
    }' "$@"
}

# last_total FILE: the Total count of the last call summary in the file.
last_total() {
  awk '/^\|Call summary/ { inside = 1 } /^\|Split summary/ { inside = 0 } inside && $2 == "Total" { t = $7 } END { print t + 0 }' "$1"
}

# traced_in_full FILE CALLS: the trace file's records are numbered 1 to
# CALLS, and its last summary counts them.
traced_in_full() {
  local last
  last=$(check_sequence "$1") || fail "the records of $1 are not numbered 1, 2, 3 ..."
  [ "$last" -eq "$2" ] || fail "$1 has $last numbered records, not $2"
  [ "$(last_total "$1")" -eq "$2" ] || fail "the summary of $1 does not count its $2 calls"
}

# run_named_case: runs the case, the function case_<name>, and says ok when
# it returns.
run_named_case() {
  local fn="case_$case_name"
  declare -F "$fn" >/dev/null || fail "no such case"
  "$fn"
  echo "ok [$case_name]"
}
