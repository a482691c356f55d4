#!/usr/bin/env bash
# End-to-end tests of zkqm and of the exit library run through it.
#
#   run_case.sh CASE ZKQM TESTEXIT WZLIB PROBEEXIT DSPZKVER
#
# Each case is a function below. A case prepares a configuration in a fresh
# directory, runs zkqm on a scenario (from scenarios/ here, or one of the
# bundled ones in sim/scenarios) and compares the log (and, where it
# matters, the exit's own standard error) with a file in expected/, or
# checks the exit status and messages. It fails on the first difference and
# says why. With ZKQM_BLESS=1 in the environment, a log that differs from
# its expected file replaces it instead (for a deliberate change of the log;
# review the difference before committing it).
set -uo pipefail

case_name=${1:?case}
ZKQM=${2:?path of zkqm}
TESTEXIT=${3:?path of the test exit}
WZLIB=${4:?path of libwz.so}
PROBE=${5:-}
DSPZKVER=${6:-}
HERE=$(cd "$(dirname "$0")" && pwd)
BUNDLED=$(cd "$HERE/../../sim/scenarios" && pwd)
# shellcheck source=tests/e2e/e2e_lib.sh
source "$HERE/e2e_lib.sh"

work_dir /tmp/zkqmXXXXXX

# run_zkqm ARGS...: runs zkqm with the log in out.log, standard error in
# err.txt and the exit status in $status.
run_zkqm() {
  "$ZKQM" "$@" >out.log 2>err.txt
  status=$?
}

# same_as EXPECTED ACTUAL: the actual file must equal the expected one.
same_as() {
  same_as_expected "$1" "$2" "$2"
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

# ---- the bundled scenarios, without and with exits ----------------------------

need_probe() {
  [ -f "$PROBE" ] || fail "the probe exit $PROBE has not been built"
}

# An exit that only observes leaves what the application sees exactly as
# it is without exits.
same_application_view() {
  application_view out.log >app.log
  application_view "$EXP/scn_$1.log" >want.log
  diff -u want.log app.log >&2 || fail "with exits the calls returned something else than without"
}

# A bundled scenario without exits: its expectations hold (they check the
# queue manager's results) and the log is the expected one.
bundled_plain() {
  run_zkqm --no-exit --scenario "$BUNDLED/$1.scn"
  expect_status 0
  [ ! -s err.txt ] || fail "unexpected messages: $(cat err.txt)"
  same_as "scn_$1.log" out.log
}

# A bundled scenario through libwz.so, everything traced: the parameter
# check holds for every exit function call, the calls return what they
# return without the exit, and the exit wrote its trace.
bundled_wz() {
  need_wz
  mkdir -p data
  printf '%s\n' ShowParsedData=yes ShowParsedMsgContent=yes ShowXaCalls=yes \
    ShowDataConvOnGet=yes ShowZkVersion=yes >data/wz.def
  ini_stanza wz wzEntry "$WZLIB" "$WORK/data" 1
  run_zkqm --ini qm.ini --scenario "$BUNDLED/$1.scn"
  expect_status 0
  lacks out.log "PARAMETER CHANGED"
  lacks err.txt "parameter check"
  contains out.log "   BEFORE wz: "
  contains out.log "   AFTER wz: "
  same_application_view "$1"
  ls data/wz_*.txt >/dev/null 2>&1 || fail "the exit wrote no trace file"
}

# A bundled scenario through the probe exit, which registers every exit
# point: the same parameter check and the same results.
bundled_probe() {
  need_probe
  ini_stanza probe ProbeEntry "$PROBE" "quiet" 1
  run_zkqm --ini qm.ini --scenario "$BUNDLED/$1.scn"
  expect_status 0
  lacks out.log "PARAMETER CHANGED"
  contains out.log "   BEFORE probe: "
  same_application_view "$1"
}

for name in demo connections queues inquire units pubsub async xa messages load; do
  eval "case_scn_$name() { bundled_plain $name; }"
  eval "case_wz_scn_$name() { bundled_wz $name; }"
  eval "case_probe_scn_$name() { bundled_probe $name; }"
done

# ---- the parameter check ------------------------------------------------------

# tamper WORD LINE...: the probe exit changes one parameter; zkqm ends with
# status 4 and names the call, the exit point, the exit and the parameter,
# in its log and on standard error.
tamper() {
  need_probe
  local word=$1
  shift
  rm -f qm.ini
  ini_stanza probe ProbeEntry "$PROBE" "quiet $word" 1
  run_zkqm --ini qm.ini --scenario "$SCN/tamper.scn"
  expect_status 4
  local line
  for line in "$@"; do
    contains out.log "$line"
  done
  contains out.log "end of scenario: "
  contains err.txt "parameter change(s) by exits: an exit must only observe"
}

case_parameter_check() {
  tamper md-priority "c1 ZKPUT BEFORE probe: PARAMETER CHANGED by ProbePut: ZKMD.Priority -1 -> 0"
  contains err.txt "zkqm: parameter check: c1 ZKPUT BEFORE: exit probe (ProbePut) changed ZKMD.Priority -1 -> 0"
  tamper compcode "c1 ZKPUT AFTER probe: PARAMETER CHANGED by ProbePut: CompCode 0 -> 1"
  contains err.txt "zkqm: parameter check: c1 ZKPUT AFTER: exit probe (ProbePut) changed CompCode 0 -> 1"
  tamper reason "c1 ZKGET AFTER probe: PARAMETER CHANGED by ProbeGet: Reason 0 -> 2033"
  tamper buffer "c1 ZKPUT BEFORE probe: PARAMETER CHANGED by ProbePut: Buffer (6 bytes): 1 byte(s) changed: byte 0 0x6C -> 0x6D"
  tamper hobj "c1 ZKPUT BEFORE probe: PARAMETER CHANGED by ProbePut: Hobj 101 -> 102"
  tamper md-pointer "c1 ZKPUT BEFORE probe: PARAMETER CHANGED by ProbePut: ZKMD address now points elsewhere"
  tamper od-name "c1 ZKOPEN BEFORE probe: PARAMETER CHANGED by ProbeOpen: ZKOD.ObjectName '' -> 'X'"
  tamper cd "c1 ZKCONNX BEFORE probe: PARAMETER CHANGED by ProbeConn: ZKCNO->ZKCD.BatchSize 50 -> 51"
  tamper ldap "c1 ZKCONNX BEFORE probe: PARAMETER CHANGED by ProbeConn: ZKCNO->ZKSCO->ZKAIR[1]->LDAPUserName (4 bytes): 1 byte(s) changed: byte 0 0x63 -> 0x43"
  tamper pmr "c1 ZKPUT BEFORE probe: PARAMETER CHANGED by ProbePut: ZKPMO->ZKPMR (48 bytes): 1 byte(s) changed: byte 0 0x00 -> 0xFF"
  tamper selectors "c1 ZKINQ BEFORE probe: PARAMETER CHANGED by ProbeInq: Selectors (4 bytes): 1 byte(s) changed: byte 0 0x03 -> 0x04"
  tamper datalength "c1 ZKGET AFTER probe: PARAMETER CHANGED by ProbeGet: DataLength 6 -> 7"
  tamper conv-buffer "c1 DATA_CONV_ON_GET BEFORE probe: PARAMETER CHANGED by ProbeGet: Buffer (4096 bytes): 1 byte(s) changed: byte 0 0x6C -> 0x6D"
  tamper cbc "c1 ZKCB_FU BEFORE probe: PARAMETER CHANGED by ProbeCallback: ZKCBC.State 0 -> 1"
  tamper xid "c1 xa_start BEFORE probe: PARAMETER CHANGED by ProbeXaXid: XID[1].formatID 1 -> 0"
  tamper axp-function "c1 ZKCONNX BEFORE probe: PARAMETER CHANGED by ProbeConn: ZKAXP.Function 4 -> 5"
  tamper axc "c1 ZKCONNX BEFORE probe: PARAMETER CHANGED by ProbeConn: ZKAXC.ThreadId 1 -> 2"
  tamper init-reason "c1 INIT probe: PARAMETER CHANGED by ProbeEntry: Reason 0 -> 1"
}

case_exit_owned_fields() {
  # The exit's user area, problem-determination area, Feedback and chain
  # area are its own to change: no error.
  need_probe
  ini_stanza probe ProbeEntry "$PROBE" "quiet own-fields" 1
  run_zkqm --ini qm.ini --scenario "$SCN/tamper.scn"
  expect_status 0
  lacks out.log "PARAMETER CHANGED"
  contains out.log "c1 INIT probe: response OK, DEFAULT_CONTINUATION; chain area set"
  contains out.log "c1 TERM probe: response OK, DEFAULT_CONTINUATION; chain area cleared"
}

# ---- chains of exits ---------------------------------------------------------------

case_chain_calls() {
  # BEFORE functions in chain order, AFTER functions in reverse order; each
  # exit of the chain has a chain area of its own.
  need_probe
  ini_stanza B ProbeEntry "$PROBE" "own-fields" 20
  ini_stanza A ProbeEntry "$PROBE" "own-fields" 10
  run_zkqm --ini qm.ini --scenario "$SCN/chain.scn"
  expect_status 0
  same_as probe_chain.log out.log
  same_as probe_chain.err err.txt
}

case_suppress_chain() {
  # A answers SUPPRESS_CHAIN: B is not called before the call, nor after.
  need_probe
  ini_stanza A ProbeEntry "$PROBE" "suppress-chain" 10
  ini_stanza B ProbeEntry "$PROBE" "" 20
  run_zkqm --ini qm.ini --scenario "$SCN/chain.scn"
  expect_status 0
  contains out.log "c1   BEFORE A: SUPPRESS_CHAIN"
  lacks err.txt "probe B: BEFORE ZKPUT"
  lacks err.txt "probe B: AFTER ZKPUT"
  contains err.txt "probe A: AFTER ZKPUT"
}

case_skip_function() {
  # SKIP_FUNCTION: the put is not made; the AFTER functions still run.
  need_probe
  ini_stanza A ProbeEntry "$PROBE" "skip-put" 10
  run_zkqm --ini qm.ini --scenario "$SCN/skip.scn"
  expect_status 0
  contains out.log "c1   BEFORE A: response SKIP_FUNCTION"
  contains out.log "c1   ZKPUT not performed: an exit answered for it"
  contains err.txt "probe A: AFTER ZKPUT"
}

case_two_wz_exits() {
  # The exit library twice in one chain, each with its own data directory
  # and chain area: both trace, neither changes a parameter.
  need_wz
  mkdir -p d1 d2
  printf '%s\n' ShowXaCalls=yes ShowDataConvOnGet=yes >d1/wz.def
  cp d1/wz.def d2/wz.def
  ini_stanza wz1 wzEntry "$WZLIB" "$WORK/d1" 1
  ini_stanza wz2 wzEntry "$WZLIB" "$WORK/d2" 2
  run_zkqm --ini qm.ini --scenario "$BUNDLED/demo.scn"
  expect_status 0
  lacks out.log "PARAMETER CHANGED"
  contains out.log "shop   BEFORE wz2: PutBefore"
  same_application_view demo
  ls d1/wz_*.txt >/dev/null 2>&1 || fail "the first exit wrote no trace"
  ls d2/wz_*.txt >/dev/null 2>&1 || fail "the second exit wrote no trace"
}

# ---- the scenario language and the level display ----------------------------------

case_scenario_blocks() {
  printf 'repeat 2 {\necho x\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:1: the block opened here is not closed with '}'"
  printf 'echo x\n}\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:2: '}' closes no block"
  printf 'message m {\n  xqh Bogus=1\n}\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:2: unknown key 'Bogus'"
  printf 'parallel {\n  echo x\n}\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "a parallel block holds only thread and process blocks"
  printf 'connection c1\nput c1 q md.NoSuchField=1\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "bad.scn:2: 'md.NoSuchField': ZKMD has no such field"
  printf 'connection c1\nget c1 q options=NO_SUCH_OPTION\n' >bad.scn
  run_zkqm --no-exit --scenario bad.scn
  expect_status 2
  contains err.txt "'NO_SUCH_OPTION' is neither a number nor a constant"
  # Loop variables, and an expectation that fails inside a loop.
  printf 'connection c1\nconnect c1\nrepeat 2 var=k {\n  expect c1 compcode ${k}\n}\n' >loop.scn
  run_zkqm --no-exit --scenario loop.scn
  expect_status 1
  contains out.log ">> expect c1 compcode 1"
  contains out.log "c1 EXPECTATION FAILED (line 4): compcode is 0, expected 1"
  contains out.log "c1 EXPECTATION FAILED (line 4): compcode is 0, expected 2"
}

# ---- structures with any field value ------------------------------------------------

case_scenario_structures() {
  # Without exits: every expectation holds (the queue manager's results,
  # what it returns where the scenario says, bytes in character fields)
  # and the log is the expected one.
  run_zkqm --no-exit --scenario "$SCN/structures.scn"
  expect_status 0
  [ ! -s err.txt ] || fail "unexpected messages: $(cat err.txt)"
  same_as structures.log out.log
  cp out.log plain.log
  # Through the probe exit, which reports what it receives: the values that
  # the scenario set before each call, and those returned, reach the exit
  # by pointer and by offset; the parameter check holds; the application
  # sees what it sees without exits.
  need_probe
  ini_stanza probe ProbeEntry "$PROBE" "quiet show" 1
  run_zkqm --ini qm.ini --scenario "$SCN/structures.scn"
  expect_status 0
  lacks out.log "PARAMETER CHANGED"
  same_as probe_structures.err err.txt
  application_view plain.log >want.log
  application_view out.log >app.log
  diff -u want.log app.log >&2 || fail "with the probe exit the calls returned something else"
}

case_scenario_structure_errors() {
  # Keys of records, returned values and bytes that cannot be used: the
  # file is refused when it is read (with its line), or the command when
  # it runs (a record that the call does not pass).
  local scn
  refused() {
    printf 'connection c1\nconnect c1\n%s\n' "$1" >bad.scn
    run_zkqm --no-exit --scenario bad.scn
    expect_status 2
    contains err.txt "$2"
  }
  refused "open c1 l - list=A,B rr.0.CompCode=1" "bad.scn:3: 'rr.0.CompCode': records are counted from 1"
  refused "open c1 l - list=A,B rr.1.Feedback=1" "bad.scn:3: 'rr.1.Feedback': ZKRR has no such field"
  refused "open c1 l - list=A,B rr.3.Reason=1" "bad.scn:3: 'rr.3.Reason': the call passes 2 response records"
  refused "open c1 q A rr.Reason=1" "bad.scn:3: 'rr.Reason': the call passes no response records"
  refused "open c1 l - list=A,B or.1.ObjectName=0x4G" "ObjectName: '0x4G' is not hexadecimal"
  refused "put c1 1 pmr=MSG_ID records=2 pmr.2.GroupId=G" "bad.scn:3: 'pmr.2.GroupId': the put-message records (pmr=) hold no GroupId"
  refused "put c1 1 records=1001" "records=1001: a number of records from 0 to 1000"
  refused "put c1 1 md.ReplyToQ=0xZZ" "ReplyToQ: '0xZZ' is not hexadecimal"
  refused "get c1 1 gmo.GroupStatus=0x0000" "GroupStatus: '0x0000' is longer than 1 characters"
  refused "get c1 1 return.gmo.NoSuchField=1" "bad.scn:3: 'return.gmo.NoSuchField': ZKGMO has no such field"
  refused "get c1 1 return.rr.1.Reason=1" "unknown key 'return.rr.1.Reason'"
  refused "connx c1 sco=1 air=1,2 air.1.OCSPResponderURL=x" "'air.1.OCSPResponderURL': record 1 (320 bytes) does not reach OCSPResponderURL"
  refused "connx c1 sco=1 air=1 ldap.2=cn=x" "'ldap.2': the call passes 1 authentication records (air=)"
  # A field for every record leaves out the records too short for it.
  printf 'connection c1\nconnx c1 sco=1 air=1,2 air.OCSPResponderURL=http://o\nexpect c1 compcode OK\n' >ok.scn
  run_zkqm --no-exit --scenario ok.scn
  expect_status 0
  # Bytes expected in the 0x form are compared byte for byte: a blank is
  # not a NUL, and a byte field is zero-padded.
  printf '%s\n' "define qlocal Q" "connection c1" "connect c1" "open c1 q Q options=OUTPUT+INPUT_SHARED" \
    "put c1 q text=x md=2 md.GroupId=0x01" "get c1 q gmo=2 md=2 return.gmo.GroupStatus=0x00" \
    "expect c1 gmo.GroupStatus 0x20" "expect c1 gmo.GroupStatus 0x00" "expect c1 md.GroupId 0x0001" >hex.scn
  run_zkqm --no-exit --scenario hex.scn
  expect_status 1
  contains out.log "c1 EXPECTATION FAILED (line 7): gmo.GroupStatus is 0x00, expected 0x20"
  contains out.log "c1 expectation met: gmo.GroupStatus 0x00"
  contains out.log "c1 EXPECTATION FAILED (line 9): md.GroupId is 0x010000000000000000000000000000000000000000000000, expected 0x0001"
}

case_deterministic_log() {
  # Threads and processes: the log is the same from run to run.
  run_zkqm --no-exit --scenario "$BUNDLED/load.scn"
  expect_status 0
  mv out.log first.log
  run_zkqm --no-exit --scenario "$BUNDLED/load.scn"
  expect_status 0
  cmp -s first.log out.log || fail "two runs of load.scn gave different logs"
}

case_dspzkver() {
  [ -x "$DSPZKVER" ] || fail "dspzkver has not been built"
  "$DSPZKVER" >out.txt 2>err.txt
  status=$?
  [ "$status" -eq 0 ] || fail "dspzkver exit status $status"
  grep -qE '^Name: +ZK$' out.txt || fail "no Name line: $(cat out.txt)"
  grep -qE '^Version: +[0-9]+\.[0-9]+\.[0-9]+\.[0-9]+$' out.txt || fail "no Version line"
  grep -qE '^Level: +[a-z][0-9]+-L[0-9]{6}$' out.txt || fail "no Level line"
  grep -qE '^BuildType: +[A-Z]{4} - \(Production\)$' out.txt || fail "no BuildType line"
  "$DSPZKVER" --bogus >out.txt 2>err.txt
  [ $? -eq 2 ] || fail "dspzkver accepted an unknown argument"
}

run_named_case
