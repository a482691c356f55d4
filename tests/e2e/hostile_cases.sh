#!/usr/bin/env bash
# End-to-end tests of the exit library against hostile input, through zkqm:
# placeholders in text from outside, shell words in names handed to the
# compress command, symbolic links planted at the names of the exit's files,
# a wz.def that is not a regular file, values at the edge of 32 bits, odd
# program names, floods of bad lines, and many threads tracing at once.
#
#   hostile_cases.sh CASE ZKQM WZLIB
#
# In every case the host must come through unharmed: zkqm ends normally
# (status 0, no signal), its parameter check finds nothing (the exit changed
# no parameter), its standard error stays empty, and the calls return what
# they return without the exit. Files planted outside the data directory
# must be left byte for byte as they were.
#
# Each case works in a fresh directory /tmp/hostile.XXXXXX (the exit data
# has room for 32 characters only): the exit data in "d", zkqm's current
# directory in "run" (where the exit puts its error file when it cannot use
# the data directory), planted link targets in "outside". zkqm runs with a
# small fixed environment. Exit status 0 passes, 77 skips, anything else
# fails.
set -uo pipefail
# Names are cut and compared byte by byte.
export LC_ALL=C

case_name=${1:?case}
ZKQM=${2:?path of zkqm}
WZLIB=${3:?path of libwz.so}
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/e2e/e2e_lib.sh
source "$HERE/e2e_lib.sh"

work_dir /tmp/hostile.XXXXXX
DATA=$WORK/d
RUN=$WORK/run
OUTSIDE=$WORK/outside
mkdir -p "$DATA" "$RUN" "$OUTSIDE"

need_wz
# qm.ini with one ApiExitLocal stanza for the exit.
ini

# Words put in front of the command that runs zkqm (setarch). They must
# exec zkqm in their own process, for $PID to be zkqm's process id.
PREFIX=()

# How long a run of zkqm may take before it is killed, in seconds.
LIMIT=60

# run_zkqm SCENARIO [HOOK]: runs zkqm in $RUN on the scenario with the exit;
# log in out.log, standard error in err.txt, exit status in $status (137
# when it was killed after $LIMIT seconds), the run's wall-clock time in
# $ELAPSED_MS and zkqm's process id in $PID. The process id is known before
# zkqm starts (the shell that runs it execs it): HOOK, when given, is
# called with it first, to plant files whose names hold it.
run_zkqm() {
  local scn hook=${2:-} started
  scn=$(scenario_path "$1")
  started=$(date +%s%N)
  (
    if [ -n "$hook" ]; then
      "$hook" "$BASHPID" || exit 125
    fi
    cd "$RUN" || exit 125
    exec "${PREFIX[@]}" "${RUN_ENV[@]}" "$ZKQM" --ini "$WORK/qm.ini" --scenario "$scn"
  ) >"$WORK/out.log" 2>"$WORK/err.txt" &
  PID=$!
  # zkqm gets $LIMIT seconds, then it is killed. The waiting is done by
  # tail, not by a shell of ours: a shell signalled right after it was
  # forked may still run this script's exit trap.
  timeout "$LIMIT" tail --pid="$PID" -s 0.05 -f /dev/null
  [ $? -ne 124 ] || kill -KILL "$PID" 2>/dev/null
  wait "$PID"
  status=$?
  ELAPSED_MS=$((($(date +%s%N) - started) / 1000000))
  [ "$status" -ne 125 ] || fail "could not prepare the run: $(cat "$WORK/err.txt")"
}

# host_survived: zkqm ended normally, and its parameter check found no
# parameter the exit changed.
host_survived() {
  if [ "$status" -ne 0 ]; then
    echo "--- log (tail):" >&2
    tail -n 30 "$WORK/out.log" >&2
    echo "--- stderr:" >&2
    cat "$WORK/err.txt" >&2
    [ "$status" -eq 137 ] && fail "zkqm did not end within $LIMIT seconds and was killed"
    [ "$status" -gt 128 ] && fail "zkqm was ended by signal $((status - 128))"
    [ "$status" -eq 4 ] && fail "zkqm's parameter check: the exit changed a parameter (status 4)"
    fail "zkqm exit status $status, expected 0"
  fi
  if grep -q "PARAMETER CHANGED" "$WORK/out.log"; then
    grep "PARAMETER CHANGED" "$WORK/out.log" | head -5 >&2
    fail "the exit changed a parameter"
  fi
}

# quiet_stderr: nothing reached zkqm's standard error.
quiet_stderr() {
  if [ -s "$WORK/err.txt" ]; then
    head -20 "$WORK/err.txt" >&2
    fail "zkqm's standard error is not empty"
  fi
}

host_unharmed() {
  host_survived
  quiet_stderr
}

# keep_copy FILE: remembers the file's bytes; untouched FILE compares.
keep_copy() {
  cp -p "$1" "$1.orig"
}

untouched() {
  [ -f "$1" ] && [ ! -L "$1" ] || fail "the planted target $1 is gone or replaced"
  cmp -s "$1" "$1.orig" || {
    echo "--- $1 now holds:" >&2
    head -c 2000 "$1" >&2
    echo >&2
    fail "the planted target $1 was changed through the link"
  }
}

# error_files: the exit's error files in the data directory and in zkqm's
# current directory, one path a line.
error_files() {
  local f
  for f in "$DATA"/wz_apiexit_error_* "$RUN"/wz_apiexit_error_*; do
    [ -e "$f" ] && echo "$f"
  done
}

no_error_files() {
  local files
  files=$(error_files)
  [ -z "$files" ] || {
    cat $files >&2
    fail "error files written: $files"
  }
}

# the_error_file DIR: the path of the one error file in DIR.
the_error_file() {
  one_file 'wz_apiexit_error_*' "$1"
}

# process_name APPL: the program name the exit derives from an application
# name: the last 28 characters (all zkqm passes on), without trailing
# blanks, from after the last "/" or blank.
process_name() {
  local name=$1
  [ ${#name} -le 28 ] || name=${name: -28}
  name=${name%"${name##*[! ]}"}
  name=${name##*[/ ]}
  printf '%s' "$name"
}

# file_name_form NAME: the name as it may stand in a file name: every byte
# other than a letter, a digit, "." or "_" made "_".
file_name_form() {
  printf '%s' "$1" | LC_ALL=C tr -c 'A-Za-z0-9._' '_'
}

# trace_stem APPL THREAD: the stem "wz_ZKQM1_<program>_<pid>_<thread>_" of
# the connection's trace files, with the program name as it stands in the
# data directory (as given, or in file-name form); fails when neither form
# names a file there.
trace_stem() {
  local name form stem f
  name=$(process_name "$1")
  form=$(file_name_form "$name")
  for stem in "wz_ZKQM1_${name}_${PID}_$2_" "wz_ZKQM1_${form}_${PID}_$2_"; do
    for f in "$DATA/$stem"[0-9]*; do
      if [ -e "$f" ]; then
        printf '%s' "$stem"
        return 0
      fi
    done
  done
  echo "no trace file wz_ZKQM1_<${name}>_${PID}_$2_... (nor with <${form}>) among:" >&2
  ls -b "$DATA" >&2
  return 1
}

# traced_calls APPL THREAD CALLS: the connection has one closed trace file,
# 001, whose records are numbered 1 to CALLS and whose summary counts them.
traced_calls() {
  local stem f
  stem=$(trace_stem "$1" "$2") || fail "the connection of '$1' (thread $2) has no trace file"
  f=$DATA/${stem}001.txt
  [ -f "$f" ] || fail "no closed trace file ${stem}001.txt: $(ls -b "$DATA")"
  traced_in_full "$f" "$3"
}

# short_scn FILE APPL [THREAD]: connect, one ZKPUT1, disconnect.
short_scn() {
  printf '%s\n' 'qmgr ZKQM1' 'define qlocal APP.Q' \
    "connection c1 appl=\"$2\" user=alice thread=${3:-1}" \
    'connect c1' 'put1 c1 APP.Q text=one' 'disconnect c1' >"$1"
}

# traffic_scn FILE APPL [THREAD]: 804 calls, about 170000 bytes of trace.
traffic_scn() {
  {
    printf '%s\n' 'qmgr ZKQM1' 'define qlocal APP.Q' \
      "connection c1 appl=\"$2\" user=alice thread=${3:-1}" \
      'connect c1' 'open c1 q APP.Q options=OUTPUT+INPUT_SHARED' 'repeat 400 quiet {'
    echo '  put c1 q text="message ${i}"'
    printf '%s\n' '  get c1 q' '}' 'close c1 q' 'disconnect c1'
  } >"$1"
}

# ---- placeholders in text from outside ------------------------------------------

# error_lines_are FILE LINE...: the error file, masked, is exactly these
# lines.
error_lines_are() {
  local file=$1
  shift
  printf '%s\n' "$@" >"$WORK/want_errors.txt"
  masked "$file" >"$WORK/got_errors.txt"
  diff -u "$WORK/want_errors.txt" "$WORK/got_errors.txt" >&2 || fail "the error file is not as it should be"
}

TS='YYYY/MM/DD hh:mm:ss.uuuuuu'
MSG2008_TEXT='Invalid parameter was found in <WORK>/d/wz.def file.  (This message might be put to a message file in another directory.)'

# Bad lines of wz.def that look like the message templates' placeholders
# (and like printf formats): message 2009 quotes each as written. The text
# of a line is inserted once and never searched for placeholders again: no
# words of the stack, no hexadecimal values, no file name in their place.
case_placeholders_in_wz_def() {
  wz_def ShowZkVersion=no '[$3s][$4s][$5x]=1' '%s%n%x%s=[$1s][$0s][$t]' 'TargetQueue=[$2d],X'
  short_scn s.scn /opt/app/bin/placeholder
  run_zkqm s.scn
  host_unharmed
  same_calls s.scn
  traced_calls /opt/app/bin/placeholder 1 3
  local errors
  errors=$(the_error_file "$DATA") || exit 1
  error_lines_are "$errors" \
    "$TS  [placeholder] (<pid>.<tid>) Msg2008: $MSG2008_TEXT" \
    "$TS  [placeholder] (<pid>.<tid>) Msg2009:   Line : 2   Parameter : [\$3s][\$4s][\$5x]=1" \
    "$TS  [placeholder] (<pid>.<tid>) Msg2009:   Line : 3   Parameter : %s%n%x%s=[\$1s][\$0s][\$t]" \
    "$TS  [placeholder] (<pid>.<tid>) Msg2009:   Line : 4   Parameter : TargetQueue=[\$2d],X"
  grep -q "($PID\.[0-9]*) Msg2009" "$errors" || fail "the error lines do not name process $PID"
}

# A program name that holds placeholders, with alerts raised by a bad line
# of wz.def: the name stands in the line prefix as it is; the message's own
# placeholders get their values; nothing else is filled in.
case_placeholders_in_process_name() {
  wz_def ShowZkVersion=no 'NoSuchKeyword=1'
  local appl name errors
  for appl in '/opt/app/bin/$1s]' '[$2x][$3x][$4x][$5x]' '[$0s][$t][$1d]%n'; do
    rm -f "$DATA"/wz_* "$RUN"/wz_*
    short_scn s.scn "$appl"
    run_zkqm s.scn
    host_unharmed
    same_calls s.scn
    traced_calls "$appl" 1 3
    name=$(process_name "$appl")
    errors=$(the_error_file "$DATA") || exit 1
    error_lines_are "$errors" \
      "$TS  [$name] (<pid>.<tid>) Msg2008: $MSG2008_TEXT" \
      "$TS  [$name] (<pid>.<tid>) Msg2009:   Line : 2   Parameter : NoSuchKeyword=1"
    lacks "$errors" "0x"
    contains "$DATA/$(trace_stem "$appl" 1)001.txt" "|  Program name       : $name"
  done
}

# ---- the compress command -----------------------------------------------------------

# injected: the files that a command smuggled in through a name would have
# made (relative names: a program name holds no "/"), in the work
# directory, or, made since the case began, at the top of / and /tmp.
injected() {
  {
    find "$WORK" \( -name 'INJECTED*' -o -name 'PWNED*' \) -print
    find / /tmp -maxdepth 1 \( -name 'INJECTED*' -o -name 'PWNED*' \) -newer "$WORK/qm.ini" -print
  } 2>/dev/null | grep .
}

# wait_compressed APPL THREAD: waits up to 10 seconds for the connection's
# first file to be closed, renamed once more with ".txt" and compressed
# under that name (".txt.txt.gz"), the program name in it as given or in
# file-name form; the path of the ".gz" in $PACKED, empty when there is
# none.
either_compressed() {
  local stem
  for stem in "$@"; do
    if gzip_done "$DATA/${stem}001.txt.txt"; then
      PACKED=$DATA/${stem}001.txt.txt.gz
      return 0
    fi
  done
  return 1
}

wait_compressed() {
  local name form
  name=$(process_name "$1")
  form=$(file_name_form "$name")
  PACKED=
  wait_for 10 either_compressed "wz_ZKQM1_${name}_${PID}_$2_" "wz_ZKQM1_${form}_${PID}_$2_"
}

# compressed_trace CALLS: $PACKED exists and holds the whole trace.
compressed_trace() {
  [ -n "$PACKED" ] || fail "no compressed trace wz_..._001.txt.txt.gz within 10 seconds: $(ls -b "$DATA")"
  gzip -dc "$PACKED" >"$WORK/unpacked.txt" || fail "$PACKED is not a gzip file"
  local last
  last=$(check_sequence "$WORK/unpacked.txt") || fail "the compressed trace is not numbered 1, 2, 3 ..."
  [ "$last" -eq "$1" ] || fail "the compressed trace ends with record $last, not $1"
}

# Program names that are shell commands: the name reaches the compress
# command only as part of the file's name, as one word the shell does not
# read. Nothing is run, and the closed file is compressed under its name.
case_compress_shell_injection() {
  wz_def ShowZkVersion=no 'CompressCommand=gzip -f $' MaxFileSize=20000000 CompressFileSizeThreshold=100000
  local appl
  for appl in 'x;id>INJECTED;#' '$(id>PWNED2)' "a'b;id>PWNED3'" 'q`id>PWNED4`q' '|id>PWNED5&'; do
    rm -f "$DATA"/wz_* "$DATA"/alert*
    traffic_scn s.scn "$appl"
    run_zkqm s.scn
    host_survived
    wait_compressed "$appl" 1
    sleep 0.5
    if injected >&2; then
      fail "the program name '$appl' ran a command"
    fi
    compressed_trace 804
    quiet_stderr
    no_error_files
  done
  same_calls s.scn
}

# The compress command runs in the background: a slow command does not hold
# up the call that closed the file, and what it writes does not reach the
# host's standard output or standard error.
case_compress_in_background() {
  wz_def ShowZkVersion=no 'CompressCommand=gzip -f $' MaxFileSize=20000000 CompressFileSizeThreshold=100000
  traffic_scn s.scn /opt/app/bin/packer
  run_zkqm s.scn
  local quick=$ELAPSED_MS
  host_unharmed
  wait_compressed /opt/app/bin/packer 1
  compressed_trace 804

  rm -f "$DATA"/wz_*
  wz_def ShowZkVersion=no 'CompressCommand=sleep 5; echo compress-out; echo compress-err >&2; gzip -f $' \
    MaxFileSize=20000000 CompressFileSizeThreshold=100000
  run_zkqm s.scn
  local slow=$ELAPSED_MS
  host_survived
  [ $((slow - quick)) -lt 3000 ] || fail "with 'sleep 5' in the compress command the run took ${slow} ms, ${quick} ms without"
  PACKED=
  if wait_for 15 gzip_done "$DATA/wz_ZKQM1_packer_${PID}_1_001.txt.txt"; then
    PACKED=$DATA/wz_ZKQM1_packer_${PID}_1_001.txt.txt.gz
  fi
  [ -n "$PACKED" ] || fail "the slow compress command did not compress the file within 15 seconds: $(ls "$DATA")"
  compressed_trace 804
  lacks "$WORK/out.log" "compress-out"
  lacks "$WORK/out.log" "compress-err"
  lacks "$WORK/err.txt" "compress-out"
  lacks "$WORK/err.txt" "compress-err"
  quiet_stderr
  no_error_files
  same_calls s.scn
}

# ---- symbolic links planted at the exit's file names -----------------------------------

# plant_target NAME: a file outside the data directory, owned by the test,
# with known content; its path.
plant_target() {
  local target=$OUTSIDE/$1
  printf 'precious content of %s\nline two\n' "$1" >"$target"
  keep_copy "$target"
  echo "$target"
}

# The closed trace file that the connection would take up again
# (wz_..._001.txt of the same queue manager, program, process and thread)
# is a link to a file elsewhere: the exit does not write through it. The
# open fails with ELOOP (message 1001) and the connection is not traced.
plant_trace_link() {
  ln -s "$OUTSIDE/trace-target.txt" "$DATA/wz_ZKQM1_linker_$1_7_001.txt"
}

case_link_at_reopened_trace_file() {
  wz_def ShowZkVersion=no
  short_scn s.scn /opt/app/bin/linker 7
  local target
  target=$(plant_target trace-target.txt)
  run_zkqm s.scn plant_trace_link
  host_unharmed
  same_calls s.scn
  untouched "$target"
  local errors
  errors=$(the_error_file "$DATA") || exit 1
  [ "$(count_of "$errors" 'Msg1001: File I/O error. ')" -eq 1 ] || fail "not one alert 1001: $(cat "$errors")"
  contains "$errors" "  File      : $DATA/wz_ZKQM1_linker_${PID}_7_001.t"
  contains "$errors" "  Operation : open"
  contains "$errors" "  Result    : ELOOP - Too many levels of symbolic links (40)."
  # No trace of the connection in a file of its own either.
  local traces
  traces=$(find "$DATA" -type f -name "wz_ZKQM1_linker_*")
  [ -z "$traces" ] || fail "the connection was traced after all: $traces"
}

# The alert file of the connection (beside the trace file, "alert" in place
# of "wz_", or of "wz_" and the two letters after it) is a link: the alert
# lines of the failing calls are not written through it, and are lost
# without a word.
plant_alert_links() {
  ln -s "$OUTSIDE/alert-target-1.txt" "$DATA/alertZKQM1_alerter_$1_3_001.txt" &&
    ln -s "$OUTSIDE/alert-target-2.txt" "$DATA/alertQM1_alerter_$1_3_001.txt"
}

case_link_at_alert_file() {
  wz_def ShowZkVersion=no PutAlertFileError=yes
  printf '%s\n' 'qmgr ZKQM1' 'define qlocal APP.Q' 'connection c1 appl=/opt/app/bin/alerter user=alice thread=3' \
    'connect c1' 'open c1 bad NOPE.Q' 'put1 c1 GONE.Q text=lost' 'put1 c1 APP.Q text=kept' 'disconnect c1' >s.scn
  local t1 t2
  t1=$(plant_target alert-target-1.txt)
  t2=$(plant_target alert-target-2.txt)
  run_zkqm s.scn plant_alert_links
  host_unharmed
  same_calls s.scn
  untouched "$t1"
  untouched "$t2"
  traced_calls /opt/app/bin/alerter 3 5
  local written
  written=$(find "$DATA" -type f -name 'alert*')
  [ -z "$written" ] || fail "alert lines went to another file: $written"
  no_error_files
}

# The error file of the process in the data directory
# (wz_apiexit_error_<pid>_<tid>.txt) is a link: the lines about the bad
# line of wz.def go to the error file of the same name in zkqm's current
# directory instead. The thread id in the name is the thread's own: with
# address-space randomisation off, a first run shows it.
plant_error_link() {
  ln -s "$OUTSIDE/error-target.txt" "$DATA/wz_apiexit_error_$1_${ERROR_TID}.txt"
}

case_link_at_error_file() {
  PREFIX=(setarch "$(uname -m)" -R)
  "${PREFIX[@]}" true 2>/dev/null || skip "setarch cannot turn address-space randomisation off here"
  wz_def ShowZkVersion=no 'NoSuchKeyword=1'
  short_scn s.scn /opt/app/bin/errlink
  run_zkqm s.scn
  host_unharmed
  local first
  first=$(the_error_file "$DATA") || exit 1
  first=$(basename "$first")
  [[ $first =~ ^wz_apiexit_error_${PID}_([0-9]+)\.txt$ ]] || fail "the error file $first does not name process $PID"
  ERROR_TID=${BASH_REMATCH[1]}
  rm -f "$DATA"/wz_* "$RUN"/wz_*

  local target
  target=$(plant_target error-target.txt)
  run_zkqm s.scn plant_error_link
  host_unharmed
  same_calls s.scn
  untouched "$target"
  local fallback=$RUN/wz_apiexit_error_${PID}_${ERROR_TID}.txt
  if [ ! -f "$fallback" ]; then
    local others
    others=$(find "$DATA" "$RUN" -type f -name 'wz_apiexit_error_*')
    [ -n "$others" ] && skip "the error file's name could not be foreseen (now $others)"
    fail "no error file $fallback in the current directory: $(ls "$RUN")"
  fi
  error_lines_are "$fallback" \
    "$TS  [errlink] (<pid>.<tid>) Msg2008: $MSG2008_TEXT" \
    "$TS  [errlink] (<pid>.<tid>) Msg2009:   Line : 2   Parameter : NoSuchKeyword=1"
  [ -z "$(find "$DATA" -type f -name 'wz_apiexit_error_*')" ] || fail "an error file was written in the data directory beside the link"
  traced_calls /opt/app/bin/errlink 1 3
}

# ---- a wz.def that is not a regular file ------------------------------------------

# not_a_regular_wz_def: the connect does not wait for the file; the
# settings stay at their defaults (the trace is the trace without a wz.def)
# and nothing is reported.
not_a_regular_wz_def() {
  short_scn s.scn /opt/app/bin/nodef
  rm -rf "$DATA/wz.def"
  run_zkqm s.scn
  host_unharmed
  traced_calls /opt/app/bin/nodef 1 3
  masked "$DATA/$(trace_stem /opt/app/bin/nodef 1)001.txt" >"$WORK/without.txt"
  no_error_files
  rm -f "$DATA"/wz_*

  "$@"
  LIMIT=20
  run_zkqm s.scn
  host_unharmed
  same_calls s.scn
  traced_calls /opt/app/bin/nodef 1 3
  masked "$DATA/$(trace_stem /opt/app/bin/nodef 1)001.txt" >"$WORK/with.txt"
  # The profile may name the file it could not read, or none.
  grep -qxF -e '|  Parameter file     : (none)' -e "|  Parameter file     : <WORK>/d/wz.def" "$WORK/with.txt" ||
    fail "the profile names another parameter file: $(grep 'Parameter file' "$WORK/with.txt")"
  grep -vF '|  Parameter file     : ' "$WORK/without.txt" >"$WORK/without.cmp"
  grep -vF '|  Parameter file     : ' "$WORK/with.txt" >"$WORK/with.cmp"
  diff -u "$WORK/without.cmp" "$WORK/with.cmp" >&2 || fail "the trace differs from the trace without a wz.def"
  no_error_files
}

case_wz_def_fifo() {
  not_a_regular_wz_def mkfifo "$DATA/wz.def"
}

case_wz_def_directory() {
  not_a_regular_wz_def mkdir "$DATA/wz.def"
}

# ---- values at the edge of 32 bits -------------------------------------------------

# A request-file interval so long that adding it to the time overflows 32
# bits: the connection is traced as usual and nothing is reported.
case_huge_update_interval() {
  printf '%s\n' 'qmgr ZKQM1' 'define qlocal APP.Q' 'connection c1 appl=/opt/app/bin/interval user=alice' \
    'connect c1' 'open c1 q APP.Q options=OUTPUT+INPUT_SHARED' 'repeat 100 quiet {' \
    '  put c1 q text=x' '  get c1 q' '}' 'close c1 q' 'disconnect c1' >s.scn
  local value
  for value in 2147483000 352000000 2147483647 -2147483648; do
    rm -f "$DATA"/wz_* "$RUN"/wz_*
    wz_def ShowZkVersion=no "CheckUpdateRequestInterval=$value"
    run_zkqm s.scn
    host_unharmed
    contains "$WORK/out.log" "c1 registrations: 41"
    traced_calls /opt/app/bin/interval 1 204
    no_error_files
  done
  same_calls s.scn
}

# A write buffer that cannot be had: the control block is not allocated,
# message 1010 says so, the exit registers nothing and the calls go on
# untraced, exactly as without the exit.
case_huge_write_buffer() {
  short_scn s.scn /opt/app/bin/bigbuffer
  local value
  for value in 2147483000 2147483647; do
    rm -f "$DATA"/wz_* "$RUN"/wz_*
    wz_def ShowZkVersion=no "WriteBufferSize=$value"
    run_zkqm s.scn
    host_unharmed
    # A block that cannot be had is an exit that could not start: its
    # FAILED answer makes the queue manager fail the connect (2374), as for
    # any start-up failure, and nothing of it is registered.
    contains "$WORK/out.log" "c1 registrations: 0"
    contains "$WORK/out.log" "2374"
    local files count=0 f
    files=$(error_files)
    [ -n "$files" ] || fail "no error file with message 1010 (WriteBufferSize=$value)"
    for f in $files; do
      count=$((count + $(count_of "$f" "Msg1010: No more memory is available.  ")))
    done
    [ "$count" -eq 1 ] || fail "not one message 1010 (WriteBufferSize=$value): $(cat $files)"
    [ -z "$(find "$DATA" -name 'wz_ZKQM1_*')" ] || fail "a trace file was written: $(ls "$DATA")"
  done
}

# ---- program names ------------------------------------------------------------------

# Long names (zkqm passes the last 28 characters of the application name),
# bytes beyond ASCII, control characters, quotes and blanks: each
# connection gets its trace file, named after the program name as given or
# in file-name form, and traced in full.
case_odd_program_names() {
  local long
  long=/opt/app/bin/$(printf 'L%03d-' $(seq 1 40))
  long=${long:0:200}
  local names=(
    "$long"
    $'/opt/app/bin/caf\xc3\xa9\x80\xfe\xff'
    $'/opt/app/bin/esc\x1b[31m\x01\x7f'
    "/opt/app/bin/it's"
    '/opt/my app/run me now'
    "/opt/app/bin/a'b\`c\\d"
    '/opt/app/bin/-rf ..'
    '/opt/app/bin/*?[x]'
  )
  [ ${#long} -eq 200 ] || fail "the long name is ${#long} characters"
  {
    printf '%s\n' 'qmgr ZKQM1' 'define qlocal APP.Q'
    local i=0 n
    for n in "${names[@]}"; do
      i=$((i + 1))
      printf 'connection c%d appl="%s" user=alice thread=%d\n' "$i" "$n" "$i"
      printf '%s\n' "connect c$i" "put1 c$i APP.Q text=one" "disconnect c$i"
    done
  } >s.scn
  run_zkqm s.scn
  host_unharmed
  same_calls s.scn
  local i=0 n
  for n in "${names[@]}"; do
    i=$((i + 1))
    traced_calls "$n" "$i" 3
  done
  [ "$(find "$DATA" -type f -name 'wz_*' | wc -l)" -eq ${#names[@]} ] ||
    fail "not one trace file per connection: $(ls -b "$DATA")"
  no_error_files
}

# ---- many bad lines ---------------------------------------------------------------------

# A wz.def of 1000 bad lines: message 2008 once, message 2009 for the first
# 100 lines (1 to 100, in order), then one message 2011 with the number of
# bad lines not shown. The connection is still traced.
case_many_bad_lines() {
  local i
  for ((i = 1; i <= 1000; i++)); do
    echo "NoSuchKeyword$i=[\$1s]"
  done >"$DATA/wz.def"
  short_scn s.scn /opt/app/bin/flood
  run_zkqm s.scn
  host_unharmed
  same_calls s.scn
  traced_calls /opt/app/bin/flood 1 3
  local errors
  errors=$(the_error_file "$DATA") || exit 1
  {
    echo "$TS  [flood] (<pid>.<tid>) Msg2008: $MSG2008_TEXT"
    for ((i = 1; i <= 100; i++)); do
      echo "$TS  [flood] (<pid>.<tid>) Msg2009:   Line : $i   Parameter : NoSuchKeyword$i=[\$1s]"
    done
    echo "$TS  [flood] (<pid>.<tid>) Msg2011:   900 more invalid line(s) in <WORK>/d/wz.def file are not shown."
  } >"$WORK/want_errors.txt"
  masked "$errors" >"$WORK/got_errors.txt"
  if ! diff -u "$WORK/want_errors.txt" "$WORK/got_errors.txt" >"$WORK/errors.diff"; then
    head -40 "$WORK/errors.diff" >&2
    fail "the error file is not 2008, 100 times 2009 and one 2011 (got $(wc -l <"$errors") lines, $(count_of "$errors" 'Msg2009:') of 2009)"
  fi
}

# ---- load ---------------------------------------------------------------------------

# well_formed FILE...: every line is one the trace is made of: the record
# lines ("-", a time stamp, "<FUNCTION", "(BEFORE", "(AFTER",
# "(CONNECTION", "CompCode:N", "Reason:N"), the numbered record heads and
# process times in their exact form, the queue manager name of a connect
# (printable characters only) and connection handles in eight hex digits,
# empty lines, and other "|" lines of printable characters only.
well_formed() {
  LC_ALL=C awk '
    /^-$/ || /^$/ { next }
    /^\[[0-9][0-9][0-9][0-9]\/[0-9][0-9]\/[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\.[0-9][0-9][0-9][0-9][0-9][0-9]\]$/ { next }
    /^<[A-Z][A-Z0-9_]*$/ || /^\((BEFORE|AFTER|CONNECTION)$/ { next }
    /^(CompCode|Reason):-?[0-9]+$/ { next }
    /^QMgrName:[ -~]*$/ && length($0) <= 57 { next }
    /^(Hconn|Hobj|Options):0x[0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F]$/ { next }
    /^(BufferLength|DataLength|WaitInterval):-?[0-9]+$/ { next }
    /^[A-Za-z][A-Za-z>-]*:\([0-9]+=x[0-9A-F]+ bytes, Address 0x[0-9A-F]+\)$/ { next }
    /^[0-9A-F]+:[0-9A-F ]+  \[[ -~]*\]$/ && length($0) <= 70 { next }
    /^[0-9A-F]+-[0-9A-F]+ same as above$/ { next }
    /^  \(Shown only leading [0-9]+ byte\(s\) \.\.\.\)$/ { next }
    /^\|--- Seq # / { if ($0 ~ /^\|--- Seq # : [0-9]+ -+$/) next }
    /^\| API process time: / { if ($0 ~ /^\| API process time: +[0-9]+\.[0-9][0-9][0-9][0-9][0-9][0-9] second$/) next }
    /^\|[ -~]*$/ && !/^\|--- Seq/ && !/^\| API process time/ { next }
    { print FILENAME ":" FNR ": " $0; if (++bad >= 10) exit 1 }
    END { exit bad > 0 }' "$@" >&2
}

# Eight threads, each with a connection of its own (the same program, thread
# ids 1 to 8) making 10000 calls, with MaxFileSize=1000000: every
# connection's records run from 1 to 10000 across its rotated files with no
# gap and no repeat, each file is well formed, the last summary counts the
# 10000 calls, and no file is left open.
case_load_threads() {
  wz_def MaxFileSize=1000000 ShowZkVersion=no
  run_zkqm hostile_load.scn
  host_unharmed
  [ "$(count_of "$WORK/out.log" 'repeat: 4998 iteration(s), 9996 call(s), 0 failed')" -eq 8 ] ||
    fail "not 8 loops of 9996 calls without failure: $(grep 'repeat:' "$WORK/out.log")"
  local t stem files f count last n
  for ((t = 1; t <= 8; t++)); do
    stem=$(trace_stem /opt/app/bin/loadtest "$t") || fail "thread $t has no trace file"
    files=()
    for ((n = 1; ; n++)); do
      f=$DATA/$(printf '%s%03d.txt' "$stem" "$n")
      [ -f "$f" ] || break
      files+=("$f")
    done
    count=$(find "$DATA" -name "${stem}*" | wc -l)
    [ "$count" -eq ${#files[@]} ] || fail "thread $t: files other than 001, 002 ... closed: $(find "$DATA" -name "${stem}*")"
    [ ${#files[@]} -ge 2 ] || fail "thread $t: the trace did not rotate (${#files[@]} file)"
    last=$(check_sequence "${files[@]}") || fail "thread $t: the records are not numbered 1, 2, 3 ... across the files"
    [ "$last" -eq 10000 ] || fail "thread $t: the last record is number $last, not 10000"
    [ "$(cat "${files[@]}" | grep -c '^|--- Seq # : ')" -eq 10000 ] || fail "thread $t: not 10000 records"
    [ "$(last_total "${files[-1]}")" -eq 10000 ] || fail "thread $t: the last summary counts $(last_total "${files[-1]}") calls"
    well_formed "${files[@]}" || fail "thread $t: lines that are not trace lines"
  done
  [ -z "$(find "$DATA" -name '*.t')" ] || fail "files left open: $(find "$DATA" -name '*.t')"
  no_error_files
  same_calls hostile_load.scn
}

run_named_case
