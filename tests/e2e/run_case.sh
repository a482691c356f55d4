#!/usr/bin/env bash
# End-to-end tests of zkqm and of the exit library run through it.
#
#   run_case.sh CASE ZKQM TESTEXIT WZLIB
#
# Each case is a function below. A case prepares a configuration in a fresh
# directory, runs zkqm on a scenario from scenarios/ and compares the log
# (and, where it matters, the exit's own standard error) with a file in
# expected/, or checks the exit status and messages. It fails on the first
# difference and says why.
set -uo pipefail

case_name=${1:?case}
ZKQM=${2:?path of zkqm}
TESTEXIT=${3:?path of the test exit}
WZLIB=${4:?path of libwz.so}
HERE=$(cd "$(dirname "$0")" && pwd)
SCN=$HERE/scenarios
EXP=$HERE/expected

# The exit data has room for 32 characters: the work directory is short.
WORK=$(mktemp -d /tmp/zkqmXXXXXX)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1

fail() {
  echo "FAIL [$case_name]: $*" >&2
  exit 1
}

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

# run_zkqm ARGS...: runs zkqm with the log in out.log, standard error in
# err.txt and the exit status in $status.
run_zkqm() {
  "$ZKQM" "$@" >out.log 2>err.txt
  status=$?
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

# same_as EXPECTED ACTUAL: the actual file must equal the expected one.
same_as() {
  diff -u "$EXP/$1" "$2" >&2 || fail "$2 differs from expected/$1"
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

need_wz() {
  [ -f "$WZLIB" ] || fail "the exit library $WZLIB has not been built"
}

# wz_setup [wz.def lines...]: a data directory with wz.def, and qm.ini.
wz_setup() {
  mkdir -p data
  printf '%s\n' "ShowZkVersion=no" "$@" >data/wz.def
  ini_stanza wz wzEntry "$WZLIB" "$WORK/data" 1
}

# ---- with the test exit -----------------------------------------------------

case_testexit_registrations() {
  ini_stanza TestExit TestEntry "$TESTEXIT" ""
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 0
  same_as testexit_basic.log out.log
  same_as testexit_basic.err err.txt
}

case_testexit_context_fields() {
  ini_stanza TestExit TestEntry "$TESTEXIT" "dump"
  run_zkqm --ini qm.ini --scenario "$SCN/fields.scn"
  expect_status 0
  same_as testexit_fields.err err.txt
}

case_failed_registration() {
  ini_stanza TestExit TestEntry "$TESTEXIT" ""
  run_zkqm --ini qm.ini --scenario "$SCN/failreg.scn"
  expect_status 0
  same_as testexit_failreg.log out.log
  # The exit itself saw the CompCode and Reason of the refused call.
  contains err.txt "testexit TestExit: ZKXEP 1/3 -> CompCode 2 Reason 2298"
}

case_failed_registration_stops_exit() {
  ini_stanza TestExit TestEntry "$TESTEXIT" "stop"
  run_zkqm --ini qm.ini --scenario "$SCN/failreg_stop.scn"
  expect_status 0
  same_as testexit_failreg_stop.log out.log
}

case_failed_response() {
  ini_stanza TestExit TestEntry "$TESTEXIT" "fail"
  run_zkqm --ini qm.ini --scenario "$SCN/failed_response.scn"
  expect_status 0
  same_as testexit_failed_response.log out.log
}

case_term_at_disconnect() {
  ini_stanza TestExit TestEntry "$TESTEXIT" ""
  run_zkqm --ini qm.ini --scenario "$SCN/term.scn"
  expect_status 0
  # TERM runs once, at the disconnect, after everything before it.
  grep -n '' out.log >numbered.log
  disc=$(grep -F ':c1 ZKDISC' numbered.log | cut -d: -f1)
  term=$(grep -F ':c1 TERM TestExit: calling TestTerm' numbered.log | cut -d: -f1)
  [ -n "$disc" ] && [ -n "$term" ] || fail "no ZKDISC or no TERM call in the log"
  [ "$term" -gt "$disc" ] || fail "TERM was called before the disconnect"
  [ "$(grep -c 'calling TestTerm' out.log)" -eq 1 ] || fail "TERM was not called exactly once"
  [ "$(grep -c 'testexit TestExit: TERM' err.txt)" -eq 1 ] || fail "the exit's TERM did not run once"
  contains out.log "c1 TERM TestExit: response OK, DEFAULT_CONTINUATION; chain area cleared"
  contains err.txt "testexit TestExit: chain area freed"
  # Without a TERM function registered, nothing is called.
  rm -f qm.ini
  ini_stanza TestExit TestEntry "$TESTEXIT" "noterm"
  run_zkqm --ini qm.ini --scenario "$SCN/term.scn"
  expect_status 0
  contains out.log "c1 TERM TestExit: no TERM function registered"
  lacks err.txt "TERM"
}

case_deregistration() {
  ini_stanza TestExit TestEntry "$TESTEXIT" "dereg"
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 0
  same_as testexit_dereg.log out.log
}

case_bad_registrations() {
  ini_stanza TestExit TestEntry "$TESTEXIT" "badhc bad"
  run_zkqm --ini qm.ini --scenario "$SCN/connect_only.scn"
  expect_status 0
  same_as testexit_bad.log out.log
  contains err.txt "testexit TestExit: ZKXEP 1/9 -> CompCode 2 Reason 2280"
  contains err.txt "testexit TestExit: ZKXEP 2/11 -> CompCode 2 Reason 2298"
}

case_chain_order() {
  ini_stanza Second TestEntry "$TESTEXIT" "" 20
  ini_stanza First TestEntry "$TESTEXIT" "" 10
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 0
  same_as testexit_chain.log out.log
}

case_no_exit() {
  ini_stanza Missing TestEntry /nonexistent/libnothere.so ""
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn" --no-exit
  expect_status 0
  same_as no_exit.log out.log
  [ ! -s err.txt ] || fail "unexpected messages: $(cat err.txt)"
  run_zkqm --scenario "$SCN/basic.scn" --no-exit
  expect_status 0
  same_as no_exit.log out.log
}

case_missing_module() {
  ini_stanza Missing TestEntry /nonexistent/libnothere.so ""
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 3
  contains err.txt "zkqm: cannot load module '/nonexistent/libnothere.so' of exit 'Missing'"
  lacks out.log "c1 ZKCONN"
  rm -f qm.ini
  ini_stanza NoEntry NoSuchEntry "$TESTEXIT" ""
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 3
  contains err.txt "zkqm: exit 'NoEntry': function 'NoSuchEntry' not found in module '$TESTEXIT'"
}

case_bad_configuration() {
  printf 'ApiExitLocal:\n   Name=x\n   Modul=/x.so\n' >qm.ini
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 3
  contains err.txt "qm.ini:3: unknown key 'Modul' in ApiExitLocal stanza"
  printf 'ApiExitLocal:\n   Name=x\n   Module=/x.so\n' >qm.ini
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn"
  expect_status 3
  contains err.txt "qm.ini:1: ApiExitLocal stanza has no Function"
  run_zkqm --ini absent.ini --scenario "$SCN/basic.scn"
  expect_status 3
  contains err.txt "cannot open configuration file 'absent.ini'"
}

case_scenario_errors() {
  printf 'qmgr Q\nconnection c1\nfrobnicate c1\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "zkqm: bad.scn:3: unknown command 'frobnicate'"
  [ ! -s out.log ] || fail "a scenario with errors must not run"
  printf 'connection c1 axp=3\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:1: axp=3: expected a number from 1 to 2"
  printf 'connection c1 appl="my prog\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:1: a quote is not closed"
  printf 'connection c1\nconnect c2\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:2: no connection named 'c2'"
  # A failed expectation is reported and gives status 1.
  printf 'connection c1\nconnect c1\nexpect c1 state disconnected\nexpect c1 reason 0\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 1
  contains out.log "c1 EXPECTATION FAILED (line 3): state is connected, expected disconnected"
  contains out.log "c1 expectation met: reason 0"
  contains out.log "end of scenario: 1 expectation(s) failed"
}

case_log_file() {
  ini_stanza TestExit TestEntry "$TESTEXIT" ""
  run_zkqm --ini qm.ini --scenario "$SCN/basic.scn" --log run.log
  expect_status 0
  [ ! -s out.log ] || fail "with --log nothing goes to standard output"
  same_as testexit_basic.log run.log
}

# ---- with the exit library ---------------------------------------------------

case_wz_axp1() {
  need_wz
  wz_setup
  run_zkqm --ini qm.ini --scenario "$SCN/wz_axp1.scn"
  expect_status 0
  same_as wz_axp1.log out.log
}

case_wz_axp1_xa() {
  # At ZKAXP version 1 the transaction-manager calls stay out, ShowXaCalls
  # or not.
  need_wz
  wz_setup "ShowXaCalls=yes"
  run_zkqm --ini qm.ini --scenario "$SCN/wz_axp1.scn"
  expect_status 0
  same_as wz_axp1.log out.log
}

case_wz_axp2() {
  need_wz
  wz_setup
  run_zkqm --ini qm.ini --scenario "$SCN/wz_axp2.scn"
  expect_status 0
  same_as wz_axp2.log out.log
}

case_wz_axp2_xa() {
  need_wz
  wz_setup "ShowXaCalls=yes"
  run_zkqm --ini qm.ini --scenario "$SCN/wz_axp2_xa.scn"
  expect_status 0
  same_as wz_axp2_xa.log out.log
}

case_wz_failed_registration() {
  need_wz
  wz_setup
  run_zkqm --ini qm.ini --scenario "$SCN/wz_failreg.scn"
  expect_status 0
  same_as wz_failreg.log out.log
  # The exit reports the refusal as alert 1021 in its error file.
  cat data/wz_apiexit_error_*.txt >errors.txt 2>/dev/null || fail "no error file in the data directory"
  contains errors.txt "Msg1021: ZK API error. Function:ZKXEP CompCode:2 Reason:2298 (ZKRC_FUNCTION_NOT_SUPPORTED)"
}

case_wz_failed_xa_registration() {
  # A refused registration inside the transaction-manager group does not
  # stop the registrations after it.
  need_wz
  wz_setup "ShowXaCalls=yes"
  run_zkqm --ini qm.ini --scenario "$SCN/wz_failreg_xa.scn"
  expect_status 0
  [ "$(grep -c '^c1 register ' out.log)" -eq 65 ] || fail "not 65 registrations"
  contains out.log "c1 register 45: AFTER xa_commit -> XaCommitAfter  FAILED CompCode 2 Reason 2298 (injected)"
  contains out.log "c1 register 65: AFTER ax_unreg -> AxUnregAfter"
  contains out.log "c1 registrations: 65 (1 failed, 0 deregistrations, 64 functions in force)"
}

case_wz_endzkm() {
  need_wz
  wz_setup
  run_zkqm --ini qm.ini --scenario "$SCN/wz_endzkm.scn"
  expect_status 0
  same_as wz_endzkm.log out.log
}

case_wz_blank_data() {
  need_wz
  ini_stanza wz wzEntry "$WZLIB" "" 1
  run_zkqm --ini qm.ini --scenario "$SCN/wz_axp2_fails.scn"
  expect_status 0
  same_as wz_blank_data.log out.log
  # With no directory, alert 2101 goes to the current directory.
  cat wz_apiexit_error_*.txt >errors.txt 2>/dev/null || fail "no error file in the current directory"
  contains errors.txt "Msg2101: Path name must be"
  contains errors.txt "as Data attribute of ApiExitLocal stanza in qm.ini file."
}

fn="case_$case_name"
declare -F "$fn" >/dev/null || fail "no such case"
"$fn"
echo "ok [$case_name]"
