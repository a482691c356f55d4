#!/usr/bin/env bash
# Tests of wzreform on real trace files: zkqm runs scenarios through the
# exit library, wzreform reads what the exit wrote, and check_calls.py
# compares the calls it wrote with the trace text, counted on its own.
#
#   reform_cases.sh CASE ZKQM WZLIB WZREFORM VERSION
#
# WZREFORM is the built program; its copy "wzreform32" lies beside it.
# Each case is a function below; it works in a fresh directory
# /tmp/wzr.XXXXXX (the exit data has room for 32 characters only). Exit
# status 0 passes, 77 skips, anything else fails.
set -uo pipefail

case_name=${1:?case}
ZKQM=${2:?path of zkqm}
WZLIB=${3:?path of libwz.so}
WZREFORM=${4:?path of wzreform}
VERSION=${5:?project version}
HERE=$(cd "$(dirname "$0")" && pwd)
E2E=$(cd "$HERE/../e2e" && pwd)
CHECK="python3 $HERE/check_calls.py"
# shellcheck source=tests/e2e/e2e_lib.sh
source "$E2E/e2e_lib.sh"
# The scenarios are the end-to-end tests' own.
SCN=$E2E/scenarios

work_dir /tmp/wzr.XXXXXX
DATA=$WORK/d

need_wz
command -v python3 >/dev/null || skip "python3 is not installed"

# run_zkqm SCENARIO: zkqm on the scenario through the exit; log in out.log.
run_zkqm() {
  local scn
  scn=$(scenario_path "$1")
  "${RUN_ENV[@]}" "$ZKQM" --ini qm.ini --scenario "$scn" >out.log 2>err.txt
  status=$?
  [ "$status" -eq 0 ] || {
    cat out.log err.txt >&2
    fail "zkqm ended with status $status on $1"
  }
}

# reform ARGS...: runs wzreform; standard error in reform.err, the exit
# status in $rc.
reform() {
  "$WZREFORM" "$@" 2>reform.err
  rc=$?
}

expect_rc() {
  [ "$rc" -eq "$1" ] || {
    cat reform.err >&2
    fail "wzreform ended with status $rc, expected $1"
  }
}

# err_has TEXT: wzreform's standard error holds the line.
err_has() {
  grep -qxF -- "$1" reform.err || {
    echo "--- standard error:" >&2
    cat reform.err >&2
    fail "wzreform did not say: $1"
  }
}

traces() {
  ls "$DATA" | grep '^wz_' | sed "s|^|$DATA/|"
}

# check_scenario SCENARIO WZDEF...: runs the scenario with this wz.def; each
# trace file read alone gives JSON Lines and CSV that check_calls.py finds
# true to the file and to its call summary; the directory read whole gives
# the calls of all files. The "nested" lines of check_calls.py are left in
# nested.txt.
check_scenario() {
  local scn=$1
  shift
  wz_def "$@"
  ini
  run_zkqm "$scn"
  : >nested.txt
  local f n=0 total=0
  for f in $(traces); do
    n=$((n + 1))
    reform -q "$f" -o "one$n.jsonl"
    expect_rc 0
    [ ! -s reform.err ] || fail "wzreform wrote to standard error with -q: $(cat reform.err)"
    reform -q --format csv "$f" -o "one$n.csv"
    expect_rc 0
    $CHECK --jsonl "one$n.jsonl" --csv "one$n.csv" --summary "$f" >check.txt ||
      fail "$(basename "$f"): the calls do not match the trace"
    grep '^nested ' check.txt >>nested.txt
    total=$((total + $(wc -l <"one$n.jsonl")))
  done
  [ "$n" -gt 0 ] || fail "the exit wrote no trace file"
  reform -q "$DATA" -o all.jsonl
  expect_rc 0
  [ "$(wc -l <all.jsonl)" -eq "$total" ] ||
    fail "the directory gives $(wc -l <all.jsonl) calls, its files one by one $total"
}

# has_nested PARENT CHILD: a CHILD call was found inside a PARENT call.
has_nested() {
  grep -qx "nested $1 $2" nested.txt || fail "no $2 inside a $1: $(sort -u nested.txt | tr '\n' ' ')"
}

# json_query FILE EXPRESSION: the Python expression over `calls` (the
# top-level objects of the JSON Lines file), printed.
json_query() {
  python3 -c '
import json, sys
calls = [json.loads(l) for l in open(sys.argv[1])]
def walk(cs):
    for c in cs:
        yield c
        yield from walk(c["inside"])
print(eval(sys.argv[2]))' "$1" "$2"
}

# ---- scenarios ------------------------------------------------------------

# Every call family of trace_all.scn, in two connections (one file each):
# the data conversion inside its get, the transaction-manager calls, the
# callback.
case_scenario_all() {
  check_scenario trace_all.scn ShowXaCalls=yes ShowDataConvOnGet=yes ShowZkVersion=no
  has_nested ZKGET DATA_CONV_ON_GET
  [ "$(traces | wc -l)" -eq 2 ] || fail "not two trace files: $(traces)"
  # The directory's calls come connection by connection: allcalls first.
  json_query all.jsonl '[c["source"]["program"] for c in calls] == sorted(c["source"]["program"] for c in calls)' |
    grep -qx True || fail "the connections' calls are mixed"
  # Header fields of one call, as the trace shows them.
  local f
  f=$(one_file 'wz_ZKQM1_allcalls_*_1_001.txt')
  reform -q "$f" -o a.jsonl
  json_query a.jsonl '[(c["function"], c["object"], c["hconn"], c["hobj"], c["compCode"], c["reason"], c["reasonName"]) for c in calls if c["seq"] == 5][0]' >got.txt
  echo "('ZKGET', 'APP.Q', '0x00000001', '0x00000065', 2, 2033, 'ZKRC_NO_MSG_AVAILABLE')" >want.txt
  diff -u want.txt got.txt >&2 || fail "the header fields of the failed get"
  json_query a.jsonl '[c["before"]["MD"]["fields"]["Format"] for c in calls if c["seq"] == 3][0]' | grep -qx 'ZKSTR (String)' ||
    fail "the put's descriptor fields are not under before.MD.fields"
  json_query a.jsonl '[c["before"]["fields"]["Options"] for c in calls if c["seq"] == 2][0]' | grep -qx 'INPUT_SHARED / OUTPUT / INQUIRE / SET' ||
    fail "the open options are not under before.fields"
  json_query a.jsonl '[(c["compCode"], c["reasonName"]) for c in calls if c["function"] == "xa_forget"][0]' | grep -qx "(-4, 'XAER_NOTA')" ||
    fail "the transaction return value of xa_forget"
}

# Messages of every kind with their content parsed: the parsed lines are in
# the dump's "text".
case_scenario_messages() {
  check_scenario trace_messages.scn ShowZkVersion=no ShowParsedMsgContent=yes
  json_query all.jsonl 'any("<order id='"'"'7'"'"'>" in c["before"]["Buffer"]["text"] for c in walk(calls) if c["function"] == "ZKPUT" and c["before"] and "Buffer" in c["before"] and "text" in c["before"]["Buffer"])' |
    grep -qx True || fail "the parsed XML of the order is not in the put's Buffer.text"
}

# Transaction-manager calls: the ax_reg made inside a put is inside it.
case_scenario_xa() {
  check_scenario trace_xa.scn ShowZkVersion=no ShowXaCalls=yes
  has_nested ZKPUT ax_reg
  [ "$(grep -c "^nested ZKPUT ax_reg$" nested.txt)" -eq 1 ] || fail "not one ax_reg call inside a put"
}

# Subscriptions and callbacks: the callbacks START_WAIT makes inside the
# ZKCTL.
case_scenario_subscriptions() {
  check_scenario trace_subscriptions.scn ShowZkVersion=no ShowParsedMsgContent=yes
  has_nested ZKCTL ZKCB_FU
  json_query all.jsonl '[c["resolved"] for c in calls if c["function"] == "ZKSUB"][0]' | grep -qx '(topic) SPORTS football' ||
    fail "the resolved name of the subscription"
}

# Queues of every kind, data shown in part, the data conversion.
case_scenario_queue_kinds() {
  check_scenario trace_queue_kinds.scn ShowZkVersion=no ShowDataConvOnGet=yes ShowMaxLenPut=16 ShowMaxLenGet=8
  json_query all.jsonl 'sorted({c["reasonName"] for c in walk(calls) if c["reasonName"]})' >names.txt
  local name
  for name in ZKRC_NO_MSG_AVAILABLE ZKRC_PUT_INHIBITED ZKRC_UNKNOWN_OBJECT_NAME ZKRC_HOBJ_ERROR; do
    grep -qF "'$name'" names.txt || fail "no call with reason $name: $(cat names.txt)"
  done
}

# Summary-only mode: one call per one-line record, with its codes, time
# and descriptor columns; the calls by function as in the call summary.
case_summary_only() {
  wz_def ShowZkVersion=no ShowXaCalls=yes ShowSummaryOnly=yes
  ini
  run_zkqm trace_xa.scn
  local f
  f=$(one_file 'wz_ZKQM1_payments_*_1_summary_001.txt')
  reform -q "$f" -o s.jsonl
  expect_rc 0
  local records
  records=$(grep -cE '^ +[0-9]+ \[' "$f")
  [ "$(wc -l <s.jsonl)" -eq "$records" ] || fail "$(wc -l <s.jsonl) calls, $records one-line records"
  awk '/^\|Call summary/ { on = 1; next } on && /^\|  [A-Za-z_0-9]+ +[0-9]/ && $2 != "Total" && $7 > 0 { print $2, $7 }' "$f" | sort >want.txt
  json_query s.jsonl '"\n".join(sorted("%s %d" % (f, n) for f, n in __import__("collections").Counter(c["function"] for c in calls).items()))' >got.txt
  diff -u want.txt got.txt >&2 || fail "the calls by function differ from the call summary"
  json_query s.jsonl '[(c["compCode"], c["reason"], c["reasonName"]) for c in calls if c["function"] == "xa_commit"][1]' | grep -qx "(-4, -4, 'XAER_NOTA')" ||
    fail "the failed xa_commit's codes"
  json_query s.jsonl '[(c["object"], c["after"]["MsgLen"], len(c["after"]["MsgId"])) for c in calls if c["function"] == "ZKPUT"][0]' | grep -qx "('PAY.Q', '9', 48)" ||
    fail "the put's object and descriptor columns"
  json_query s.jsonl 'all(c["afterMicros"] - c["beforeMicros"] == c["elapsedMicros"] for c in calls)' | grep -qx True ||
    fail "the start of a call is not its end less its elapsed time"
}

# ---- rotation and compression ----------------------------------------------

# A long run in files of 1000000 bytes: the calls go on from file to file
# in order, 12004 of them, none cut in two.
rotate() {
  wz_def MaxFileSize=1000000 ShowZkVersion=no "$@"
  ini
  run_zkqm trace_rotate.scn
}

# seq_in_order FILE COUNT: the top-level calls are numbered 1 to COUNT.
seq_in_order() {
  json_query "$1" '[c["seq"] for c in calls] == list(range(1, '"$2"' + 1)) and not any(c["unfinished"] for c in calls)' |
    grep -qx True || fail "$1 does not hold the calls 1 to $2 in order"
}

case_rotation_plain() {
  rotate
  local files
  files=$(traces | wc -l)
  [ "$files" -ge 3 ] || fail "only $files trace file(s)"
  reform -q "$DATA" -o r.jsonl
  expect_rc 0
  seq_in_order r.jsonl 12004
  # shellcheck disable=SC2046
  $CHECK --jsonl r.jsonl --summary $(traces) >/dev/null || fail "the calls do not match the files"
  # The files named in any order read the same.
  # shellcheck disable=SC2046
  reform -q $(traces | sort -r) -o r2.jsonl
  cmp -s r.jsonl r2.jsonl || fail "the files named in another order read differently"
}

# compressed_all SUFFIX: every trace file but the last (closed below the
# threshold) has been compressed, and no compression is under way.
compressed_all() {
  local all packed loose
  all=$(traces | wc -l)
  packed=$(traces | grep -c "\\.txt\\.txt\\.$1\$")
  loose=$(traces | grep -c '\.txt\.txt$')
  [ "$all" -ge 3 ] && [ "$packed" -eq $((all - 1)) ] && [ "$loose" -eq 0 ]
}

# same_as_unpacked SUFFIX TOOL...: the directory reads the same as copies of
# its files unpacked by TOOL under the names they had before compression.
same_as_unpacked() {
  local suffix=$1
  shift
  wait_for 60 compressed_all "$suffix" || fail "the files were not compressed: $(ls "$DATA")"
  reform -q "$DATA" -o packed.jsonl
  expect_rc 0
  seq_in_order packed.jsonl 12004
  mkdir plain
  local f name
  for f in $(traces); do
    name=$(basename "$f")
    case $name in
    *.txt.txt."$suffix") "$@" <"$f" >"plain/${name%.txt.$suffix}" || fail "$* failed on $name" ;;
    *) cp "$f" plain/ ;;
    esac
  done
  reform -q plain -o plain.jsonl
  expect_rc 0
  python3 -c '
import json, sys
def calls(path):
    out = []
    for line in open(path):
        c = json.loads(line)
        del c["source"]["file"]
        out.append(c)
    return out
sys.exit(calls(sys.argv[1]) != calls(sys.argv[2]))' packed.jsonl plain.jsonl ||
    fail "the compressed files read differently from their text"
}

case_rotation_gzip() {
  command -v gzip >/dev/null || skip "gzip is not installed"
  rotate 'CompressCommand=gzip -f $'
  same_as_unpacked gz gzip -dc
}

case_rotation_zstd() {
  command -v zstd >/dev/null || skip "zstd is not installed"
  rotate 'CompressCommand=zstd -q --rm $'
  same_as_unpacked zst zstd -dcq
}

# Tracing switched off and on by live control: the first file closed as
# ".txt.f" with the note "Disabled", the next beginning with "Enabled".
# The two read as one connection: the calls 1 to 8, the notes no part of
# any record.
case_live_switch() {
  wz_def ShowZkVersion=no CheckUpdateRequestInterval=1
  ini
  RUN_ENV+=("WZ_DATA=$DATA")
  run_zkqm live_switch.scn
  local off on
  off=$(one_file 'wz_ZKQM1_switcher_*_1_001.txt.f')
  on=$(one_file 'wz_ZKQM1_switcher_*_1_002.txt')
  grep -q '\*\*\* Disabled \*\*\*' "$off" || fail "no note Disabled in $off"
  reform -q "$DATA" -o live.jsonl
  expect_rc 0
  seq_in_order live.jsonl 8
  $CHECK --jsonl live.jsonl "$off" "$on" >/dev/null || fail "the calls do not match the files"
  json_query live.jsonl '[c["function"] for c in calls]' |
    grep -qxF "['ZKCONN', 'ZKOPEN', 'ZKPUT', 'ZKGET', 'ZKGET', 'ZKGET', 'ZKCLOSE', 'ZKDISC']" ||
    fail "not the calls traced: $(json_query live.jsonl '[c["function"] for c in calls]')"
  grep -q 'Disabled\|Enabled' live.jsonl && fail "a note of live control became part of a record"
  return 0
}

# ---- damaged and foreign input ----------------------------------------------

# A trace cut in the middle of a line, or inside a record's header: the
# calls before it are written, the cut is reported with the last whole
# line, status 1. Cut between records: the open call is written as
# unfinished, and that is no damage.
case_truncated() {
  wz_def ShowXaCalls=yes ShowDataConvOnGet=yes ShowZkVersion=no
  ini
  run_zkqm trace_all.scn
  local f name lines
  f=$(one_file 'wz_ZKQM1_allcalls_*_1_001.txt')
  name=$(basename "$f")
  mkdir cut
  # In the middle of a line.
  head -c 20000 "$f" >"cut/$name"
  lines=$(tr -cd '\n' <"cut/$name" | wc -c)
  reform -q "cut/$name" -o c1.jsonl
  expect_rc 1
  err_has "wzreform: cut/$name: the last record is cut off after line $lines"
  [ "$(wc -l <c1.jsonl)" -ge 3 ] || fail "the calls before the cut were not written"
  json_query c1.jsonl 'all(json.loads(json.dumps(c)) for c in calls)' >/dev/null || fail "not JSON"
  # Inside the header of record 5: after its number.
  lines=$(grep -n '^|--- Seq # : 5 ' "$f" | cut -d: -f1)
  head -n "$lines" "$f" >"cut/$name"
  reform -q "cut/$name" -o c2.jsonl
  expect_rc 1
  err_has "wzreform: cut/$name: the last record is cut off after line $lines"
  json_query c2.jsonl '[c["seq"] for c in calls]' | grep -qx '\[1, 2, 3, 4\]' || fail "not the calls 1 to 4: $(cat c2.jsonl)"
  # After the before-record of call 5, before its after-record.
  lines=$(awk '/^\|--- Seq # : 5 / { on = 1 } on && /^\(AFTER$/ { print NR - 5; exit }' "$f")
  head -n "$lines" "$f" >"cut/$name"
  reform -q "cut/$name" -o c3.jsonl
  expect_rc 0
  [ ! -s reform.err ] || fail "a trace that ends between records was reported: $(cat reform.err)"
  json_query c3.jsonl '[(c["seq"], c["unfinished"], c["afterTime"], c["beforeTime"] is not None) for c in calls][-1]' |
    grep -qx "(5, True, None, True)" || fail "call 5 is not written unfinished"
  $CHECK --jsonl c3.jsonl --unfinished 1 "cut/$name" >/dev/null || fail "the calls before the cut do not match"
}

# Files that are not traces: each reported, status 2; the traces among
# them still read whole.
case_not_a_trace() {
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_short.scn
  local f
  f=$(traces | head -1)
  echo "hello, world" >hello.txt
  head -c 4096 /dev/urandom >random.bin
  printf '\037\213this is no gzip data' >fake.gz
  : >empty.txt
  reform -q hello.txt "$f" random.bin missing.txt fake.gz empty.txt -o o.jsonl
  expect_rc 2
  err_has "wzreform: hello.txt: not a wz trace file"
  err_has "wzreform: random.bin: not a wz trace file"
  err_has "wzreform: missing.txt: No such file or directory"
  err_has "wzreform: fake.gz: gzip -dc ended with status 1"
  grep -q 'empty.txt' reform.err && fail "an empty file was reported"
  $CHECK --jsonl o.jsonl --summary "$f" >/dev/null || fail "the trace among the other files was not read whole"
  mkdir nothing
  reform -q nothing -o o.jsonl
  expect_rc 2
  err_has "wzreform: nothing: no wz trace files in this directory"
}

# Hostile text inside a trace: bytes of every value in a field's value
# come out escaped and whole, a line of 100000 bytes is cut at 65536 and
# reported (status 1), a thousand callbacks that never end nest no deeper
# than the reader allows, and the output stays JSON.
case_hostile_input() {
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_short.scn
  local f name
  f=$(traces | head -1)
  name=$(basename "$f")
  python3 - "$f" "h_$name" <<'PY'
import sys
text = open(sys.argv[1], "rb").read()
at = text.index(b"\n(AFTER\n")
at = text.index(b"| API process time:", at)
at = text.index(b"\n", at) + 1
odd = bytes(range(1, 256)).replace(b"\n", b"")
extra = b"Odd:" + odd + b"\n" + b"Long:" + b"x" * 100000 + b"\n"
nest = b"".join(b"-\n|--- Seq # : 1 ---\n[2026/11/24 12:00:00.000000]\n<ZKCB_FU\n(BEFORE\n" for _ in range(1000))
open(sys.argv[2], "wb").write(text[:at] + extra + text[at:] + nest)
PY
  reform -q "h_$name" -o h.jsonl
  expect_rc 1
  err_has "wzreform: h_$name: 1 line(s) longer than 65536 bytes were cut there"
  python3 - h.jsonl <<'PY' || fail "the odd bytes did not come through"
import json, sys
raw = open(sys.argv[1], "rb").read()
raw.decode("ascii")
calls = [json.loads(l) for l in raw.splitlines()]
odd = bytes(range(1, 256)).replace(b"\n", b"").decode("latin-1").rstrip(" ")
values = [c["after"].get("Odd") for c in calls if c["after"]]
assert odd in values, values
longs = [c["after"]["Long"] for c in calls if c["after"] and "Long" in c["after"]]
assert longs == ["x" * (65536 - 5)], [len(l) for l in longs]
def depth(c):
    return 1 + max([depth(i) for i in c["inside"]] or [0])
assert max(depth(c) for c in calls) <= 32
assert sum(1 for c in calls if c["function"] == "ZKCB_FU") >= 1000 // 32
PY
}

# ---- the command line -------------------------------------------------------

# The command the exit runs: wzreform32 INPUT -o OUTPUT -q.
case_exit_command() {
  wz_def ShowZkVersion=no ShowXaCalls=yes
  ini
  run_zkqm trace_xa.scn
  local f
  f=$(traces | head -1)
  "$(dirname "$WZREFORM")/wzreform32" "$f" -o "$WORK/out.jsonl" -q >stdout.txt 2>reform.err
  rc=$?
  expect_rc 0
  [ ! -s reform.err ] && [ ! -s stdout.txt ] || fail "wzreform32 -q wrote: $(cat stdout.txt reform.err)"
  $CHECK --jsonl out.jsonl --summary "$f" >/dev/null || fail "the output does not match the trace"
  # Standard input, the same calls.
  "$WZREFORM" -q - <"$f" >stdin.jsonl 2>reform.err || fail "standard input: $(cat reform.err)"
  $CHECK --jsonl stdin.jsonl --summary "$f" >/dev/null || fail "standard input reads differently"
  # Without -q: one line of information.
  reform "$f" -o out2.jsonl
  expect_rc 0
  grep -qE '^wzreform: [0-9]+ call\(s\) from 1 file\(s\), [0-9]+ bytes read$' reform.err ||
    fail "no information line: $(cat reform.err)"
}

case_usage() {
  reform
  expect_rc 64
  err_has "wzreform: no input: name trace files or directories, or - for standard input"
  reform --no-such-option x
  expect_rc 64
  reform --format nonsense x
  expect_rc 64
  err_has "wzreform: unknown format nonsense (jsonl, csv, trace-event, otlp, summary, html)"
  reform --since yesterday x
  expect_rc 64
  reform x -o
  expect_rc 64
  "$WZREFORM" --version >version.txt || fail "--version failed"
  [ "$(cat version.txt)" = "wzreform $VERSION" ] || fail "--version printed: $(cat version.txt)"
  "$WZREFORM" --help >help.txt || fail "--help failed"
  grep -q '^usage: wzreform ' help.txt || fail "--help printed no usage"
  # The output must not overwrite an input.
  printf -- '-\n' >in.txt
  cp in.txt keep.txt
  reform in.txt -o in.txt
  expect_rc 64
  cmp -s in.txt keep.txt || fail "the input was overwritten"
}

# The selection options against the same selection made here from the
# whole output: a matching call goes out whole, a call that does not match
# leaves its matching inner calls to go out on their own (with the source
# of the call they were in).
case_filters() {
  wz_def ShowZkVersion=no ShowXaCalls=yes ShowDataConvOnGet=yes
  ini
  run_zkqm trace_all.scn
  run_zkqm trace_xa.scn
  reform -q "$DATA" -o all.jsonl
  expect_rc 0
  # selected NAME ARGS... PYTHON-CONDITION: wzreform with the options gives
  # what the condition picks from all.jsonl.
  selected() {
    local name=$1 cond=${*: -1}
    local args=("${@:2:$#-2}")
    reform -q "${args[@]}" "$DATA" -o "$name.jsonl"
    expect_rc 0
    python3 -c '
import fnmatch, json, sys
def match(c):
    return eval(sys.argv[2])
def pick(c, source):
    if match(c):
        yield dict(c, source=source)
    else:
        for i in c["inside"]:
            yield from pick(i, source)
want = [json.dumps(p, sort_keys=True) for l in open(sys.argv[1])
        for c in [json.loads(l)] for p in pick(c, c["source"])]
got = [json.dumps(json.loads(l), sort_keys=True) for l in open(sys.argv[3])]
if want != got or not want:
    sys.exit("%d calls selected, %d expected" % (len(got), len(want)))' all.jsonl "$cond" "$name.jsonl" ||
      fail "selection $name: ${args[*]}"
  }
  selected put --function ZKPUT 'c["function"] == "ZKPUT"'
  selected xa --function 'xa_*' --function ax_reg 'c["function"].startswith("xa_") or c["function"] == "ax_reg"'
  selected queue --queue 'APP.?' 'fnmatch.fnmatchcase(c["object"] or "", "APP.?") or fnmatch.fnmatchcase(c["resolved"] or "", "APP.?")'
  selected failed --failed 'c["compCode"] is not None and (c["compCode"] < 0 if c["function"][:3] in ("xa_", "ax_") else c["compCode"] == 2)'
  selected reason --reason ZKRC_NO_MSG_AVAILABLE 'c["reasonName"] == "ZKRC_NO_MSG_AVAILABLE"'
  selected reasonnumber --reason 2033 'c["reason"] == 2033'
  selected xareason --reason -4 'c["reason"] == -4 and c["compCode"] is not None'
  selected both --function ZKGET --failed 'c["function"] == "ZKGET" and c["compCode"] == 2'
  # Times: from the second of the first call on, everything; up to the
  # second before it, nothing; a time of day as well.
  local first
  first=$(head -1 all.jsonl | python3 -c 'import json, sys; print(json.load(sys.stdin)["beforeTime"][:19])')
  selected since --since "$first" 'True'
  selected sinceday --since "${first:11}" 'True'
  reform -q --until "$(date -u -d "${first//\//-} 1 second ago" '+%Y/%m/%d %H:%M:%S')" "$DATA" -o none.jsonl
  expect_rc 0
  [ ! -s none.jsonl ] || fail "calls before the first one: $(head -c 300 none.jsonl)"
}

"case_$case_name"
