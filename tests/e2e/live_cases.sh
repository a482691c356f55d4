#!/usr/bin/env bash
# End-to-end tests of live control: request files written into the exit's
# directory while zkqm runs a scenario through libwz.so enable, disable or
# renew the trace of the running connections.
#
#   live_cases.sh CASE ZKQM WZLIB
#
# Each case is a function below. It works in a fresh directory
# /tmp/wzl.XXXXXX with the exit's data directory "d" beneath it, and runs
# zkqm with the environment of the other end-to-end tests plus WZ_DATA, the
# data directory, which the scenarios (scenarios/live_*.scn) name in their
# 'file' commands. The exit looks for requests once a second
# (CheckUpdateRequestInterval=1); the scenarios write a request, then sleep
# a little over a second, so that the next call is one at which it looks.
# Exit status 0 passes, anything else fails.
set -uo pipefail

case_name=${1:?case}
ZKQM=${2:?path of zkqm}
WZLIB=${3:?path of libwz.so}
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/e2e/e2e_lib.sh
source "$HERE/e2e_lib.sh"

work_dir /tmp/wzl.XXXXXX
DATA=$WORK/d
RUN_ENV+=("WZ_DATA=$DATA")

need_wz

# run_zkqm SCENARIO: runs zkqm with qm.ini on the scenario; log in out.log,
# standard error in err.txt, exit status in $status.
run_zkqm() {
  local scn
  scn=$(scenario_path "$1")
  "${RUN_ENV[@]}" "$ZKQM" --ini qm.ini --scenario "$scn" >out.log 2>err.txt
  status=$?
}

# calls_of FILE: the calls a trace file holds records of, one line per
# numbered call, in order: "NUMBER FUNCTION".
calls_of() {
  awk '
    /^\|--- Seq # : [0-9]+ -+$/ { n = $5; next }
    /^</ { fn = substr($0, 2); next }
    /^\(BEFORE$/ && n != "" { print n, fn; n = "" }' "$1"
}

# notes_of FILE: the notes ("|  *** text ***  [time]") of a trace file,
# their text only, in order.
notes_of() {
  sed -n 's/^|  \*\*\* \(.*\) \*\*\*  \[.*\]$/\1/p' "$1"
}

# summary_total FILE FUNCTION: the Total column of the function's row in
# the last call summary of the file.
summary_total() {
  awk -v f="$2" '
    /^\|Call summary/ { delete t; inside = 1; next }
    /^\|Split summary/ { inside = 0 }
    inside && $2 == f { t[f] = $7 }
    END { print t[f] + 0 }' "$1"
}

# expect_lines FILE WANT...: the lines that command output FILE holds are
# exactly WANT.
expect_lines() {
  local file=$1
  shift
  printf '%s\n' "$@" >want.txt
  diff -u want.txt "$file" >&2 || fail "$file is not as expected"
}

# ---- cases --------------------------------------------------------------------

# Disabled by a request of 10 bytes and enabled again by one of 20: the
# file traced before the disable ends with the note "Disabled" and is
# closed as ".txt.f"; the next file begins with "Enabled" and traces from
# the call at which the exit saw the request. Calls made in between are
# neither traced nor counted: the numbers of the records go on without a
# gap, and the last summary counts the calls traced, from the connect on.
case_live_disable_enable() {
  wz_def ShowZkVersion=no CheckUpdateRequestInterval=1
  ini
  run_zkqm live_switch.scn
  expect_status 0
  same_calls live_switch.scn
  local off on
  off=$(one_file 'wz_ZKQM1_switcher_*_1_001.txt.f')
  on=$(one_file 'wz_ZKQM1_switcher_*_1_002.txt')
  [ "$(ls "$DATA" | grep -c '^wz_')" -eq 2 ] || fail "other trace files: $(ls "$DATA")"
  check_sequence "$off" "$on" >last.txt || fail "the records are not numbered 1, 2, 3 ... across both files"
  calls_of "$off" >off.txt
  expect_lines off.txt "1 ZKCONN" "2 ZKOPEN" "3 ZKPUT"
  calls_of "$on" >on.txt
  expect_lines on.txt "4 ZKGET" "5 ZKGET" "6 ZKGET" "7 ZKCLOSE" "8 ZKDISC"
  notes_of "$off" >notes.txt
  expect_lines notes.txt Disabled
  notes_of "$on" >notes.txt
  expect_lines notes.txt Enabled
  # What was put while tracing was off is seen only when it is got later.
  lacks "$off" "while-off"
  [ "$(count_of "$on" "while-off-1")" -gt 0 ] || fail "the get after the enable does not show its data"
  # The "Disabled" note stands after the last record and before the summary.
  awk '/\*\*\* Disabled \*\*\*/ { d = NR } /^\|Call summary/ { s = NR } END { exit !(d && s > d) }' "$off" ||
    fail "the note Disabled does not come before the closing summary"
  [ "$(summary_total "$off" ZKPUT)" -eq 1 ] || fail "the first file's summary does not count one put"
  [ "$(summary_total "$on" ZKPUT)" -eq 1 ] || fail "the puts made while disabled were counted"
  [ "$(summary_total "$on" ZKGET)" -eq 3 ] || fail "the last summary does not count the three gets traced"
  [ "$(last_total "$on")" -eq 8 ] || fail "the last summary counts $(last_total "$on") calls, not the 8 traced"
}

# A renew (an empty request file) after wz.def was rewritten to trace
# another queue: the running file is closed with "Disabled for renew" as
# ".txt.f", the next begins with "Enabled for renew" and the new settings
# in its profile; the queues opened before the renew are selected by the
# new TargetQueue, from the call at which the exit saw the request on; the
# counts go on.
case_live_renew_filter() {
  wz_def ShowZkVersion=no CheckUpdateRequestInterval=1 CountSelectedCallsOnly=yes TargetQueue=A.Q
  ini
  run_zkqm live_renew.scn
  expect_status 0
  local before after
  before=$(one_file 'wz_ZKQM1_renewer_*_1_001.txt.f')
  after=$(one_file 'wz_ZKQM1_renewer_*_1_002.txt')
  check_sequence "$before" "$after" >/dev/null || fail "the records are not numbered 1, 2, 3 ... across both files"
  calls_of "$before" >before.txt
  expect_lines before.txt "1 ZKCONN" "2 ZKOPEN" "3 ZKPUT"
  calls_of "$after" >after.txt
  expect_lines after.txt "4 ZKPUT" "5 ZKGET" "6 ZKCLOSE" "7 ZKDISC"
  contains "$before" "| ObjectName:A.Q"
  lacks "$before" "| ObjectName:B.Q"
  contains "$after" "| ObjectName:B.Q"
  lacks "$after" "| ObjectName:A.Q"
  lacks "$after" "a-after"
  notes_of "$before" >notes.txt
  expect_lines notes.txt "Disabled for renew"
  notes_of "$after" >notes.txt
  expect_lines notes.txt "Enabled for renew"
  contains "$before" "|  Target queue name  : A.Q"
  contains "$after" "|  Target queue name  : B.Q"
  [ "$(summary_total "$after" ZKOPEN)" -eq 1 ] || fail "the open of A.Q before the renew is not counted any more"
  [ "$(summary_total "$after" ZKPUT)" -eq 2 ] || fail "the last summary does not count the two puts traced"
  [ "$(last_total "$after")" -eq 7 ] || fail "the last summary counts $(last_total "$after") calls, not 7"
}

# Two threads of one process, each with its connection: a request named by
# the process and the first thread's identifier disables the first
# connection only.
case_live_one_thread() {
  wz_def ShowZkVersion=no CheckUpdateRequestInterval=1
  ini
  run_zkqm live_thread.scn
  expect_status 0
  local first second
  first=$(one_file 'wz_ZKQM1_first_*_21_001.txt.f')
  second=$(one_file 'wz_ZKQM1_second_*_22_001.txt')
  [ "$(ls "$DATA" | grep -c '^wz_')" -eq 2 ] || fail "other trace files: $(ls "$DATA")"
  ls "$DATA" | grep -qE '^signal_[0-9]+_21\.set$' || fail "no request file for thread 21: $(ls "$DATA")"
  calls_of "$first" >first.txt
  expect_lines first.txt "1 ZKCONN" "2 ZKOPEN" "3 ZKPUT"
  notes_of "$first" >notes.txt
  expect_lines notes.txt Disabled
  lacks "$first" "first-untraced"
  calls_of "$second" >second.txt
  expect_lines second.txt "1 ZKCONN" "2 ZKOPEN" "3 ZKPUT" "4 ZKPUT" "5 ZKCLOSE" "6 ZKDISC"
  notes_of "$second" >notes.txt
  [ ! -s notes.txt ] || fail "the second thread's trace has notes: $(cat notes.txt)"
}

# A request file present before the connect is not a request; touched
# again it is. The per-thread renew written at the same time, with an older
# modification time than the touched file, is not taken.
case_live_present_at_start() {
  wz_def ShowZkVersion=no CheckUpdateRequestInterval=1
  ini
  run_zkqm live_startup.scn
  expect_status 0
  local f
  f=$(one_file 'wz_ZKQM1_latecomer_*_5_001.txt.f')
  [ "$(ls "$DATA" | grep -c '^wz_')" -eq 1 ] || fail "other trace files: $(ls "$DATA")"
  calls_of "$f" >calls.txt
  expect_lines calls.txt "1 ZKCONN" "2 ZKOPEN" "3 ZKPUT" "4 ZKPUT"
  notes_of "$f" >notes.txt
  expect_lines notes.txt Disabled
  contains "$f" "traced-2"
  lacks "$f" "untraced"
}

run_named_case
