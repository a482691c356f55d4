#!/usr/bin/env bash
# End-to-end tests of what the exit library writes: trace files, alert files
# and error files, produced by zkqm running scenarios through libwz.so.
#
#   trace_cases.sh CASE ZKQM WZLIB DSPZKVER
#
# Each case is a function below. It works in a fresh directory
# /tmp/wze.XXXXXX (the exit data has room for 32 characters only), puts the
# exit's wz.def into its "d" subdirectory, runs zkqm with a small fixed
# environment (so that the profile's locale and environment lines are the
# same everywhere), and compares the files the exit wrote, masked with
# mask_trace.sh, with files in expected/, or checks them line by line. With
# ZKQM_BLESS=1 a masked file that differs from its expected file replaces
# it (for a deliberate change of the trace; review the difference first).
# Exit status 0 passes, 77 skips, anything else fails.
set -uo pipefail

case_name=${1:?case}
ZKQM=${2:?path of zkqm}
WZLIB=${3:?path of libwz.so}
DSPZKVER=${4:?path of dspzkver}
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/e2e/e2e_lib.sh
source "$HERE/e2e_lib.sh"

work_dir /tmp/wze.XXXXXX
DATA=$WORK/d

need_wz

# run_zkqm SCENARIO [ZKQM]: runs zkqm with qm.ini on the scenario (a name in
# scenarios/ or a path); log in out.log, standard error in err.txt, exit
# status in $status.
run_zkqm() {
  local scn
  scn=$(scenario_path "$1")
  "${RUN_ENV[@]}" "${2:-$ZKQM}" --ini qm.ini --scenario "$scn" >out.log 2>err.txt
  status=$?
}

# same_as EXPECTED FILE [TEXT=NAME...]: the masked file equals
# expected/EXPECTED.
same_as() {
  local expected=$1 file=$2
  shift 2
  masked "$file" "$@" >"$WORK/masked.tmp"
  same_as_expected "$expected" "$WORK/masked.tmp" "$file (masked)"
}

# The stem of a trace file name: wz_<qmgr>_<program>_<pid>_<tid>_.
stem_of() {
  basename "$1" | sed -E 's/[0-9]{3,}\.(t|txt)(\..*)?$//'
}

# calls_in_log LOG CONN: the calls the connection made as zkqm logged them,
# one line "FUNCTION COUNT" per function, sorted by name.
calls_in_log() {
  awk -v c="$2" '
    $1 != c { next }
    $2 ~ /^ZK[A-Z0-9]+$/ { n[$2]++ }
    $2 == "callback" { n["ZKCB_FU"]++ }
    $2 ~ /^(xa|ax)_[a-z]+,?$/ { f = $2; sub(/,$/, "", f); n[f]++ }
    END { for (f in n) print f, n[f] }' "$1" | sort
}

# summary_rows FILE: the rows with calls of the last call summary of a trace
# file, as "FUNCTION TOTAL", sorted by name.
summary_rows() {
  awk '
    /^\|Call summary/ { delete n; inside = 1; next }
    /^\|Split summary/ { inside = 0 }
    inside && /^\|  [A-Za-z0-9_]+ +[0-9]+ +[0-9]+ +[0-9]+ +[0-9]+ +[0-9]+/ {
      if ($2 != "Total" && $7 > 0) n[$2] = $7
    }
    END { for (f in n) print f, n[f] }' "$1" | sort
}

# ---- cases --------------------------------------------------------------------

# Every call family: one before- and one after-record per call, numbered
# without a gap; the whole trace files as expected; the summary counts the
# calls zkqm made.
case_trace_all_calls() {
  wz_def ShowXaCalls=yes ShowDataConvOnGet=yes ShowZkVersion=no
  ini
  run_zkqm trace_all.scn
  expect_status 0
  same_calls trace_all.scn
  local conn connx
  conn=$(one_file 'wz_ZKQM1_allcalls_*_1_001.txt')
  connx=$(one_file 'wz_ZKQM1_allconnx_*_1_001.txt')
  [ "$(ls "$DATA" | grep -c '^wz_')" -eq 2 ] || fail "other trace files: $(ls "$DATA")"
  local last
  last=$(check_sequence "$conn") || fail "the records of $conn are not numbered 1, 2, 3 ..."
  # The calls of the connection, from zkqm's log: each has its number.
  calls_in_log plain.log c1 >calls.txt
  local total
  total=$(awk '{ s += $2 } END { print s }' calls.txt)
  [ "$last" -eq "$total" ] || fail "the last record is number $last, zkqm made $total calls"
  summary_rows "$conn" >rows.txt
  diff -u calls.txt rows.txt >&2 || fail "the call summary does not count the calls zkqm made"
  # The data conversion has a record of its own, without a number.
  [ "$(count_of "$conn" '<DATA_CONV_ON_GET')" -eq 1 ] || fail "not one data conversion record"
  last=$(check_sequence "$connx") || fail "the records of $connx are not numbered 1, 2"
  [ "$last" -eq 2 ] || fail "the ZKCONNX connection has $last numbered records, not 2"
  same_as trace_all_calls.txt "$conn"
  same_as trace_all_connx.txt "$connx"
}

# Inquire and set (trace_inquire.scn): the whole records of ZKINQ and ZKSET
# with their counts, the arrays dumped and shown selector by selector, the
# values asked for before the call and returned after it, failed calls with
# their reason by name.
case_trace_inquire() {
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_inquire.scn
  expect_status 0
  same_calls trace_inquire.scn
  local f
  f=$(one_file 'wz_ZKQM1_inquirer_*_1_001.txt')
  check_sequence "$f" >/dev/null || fail "the records of $f are not numbered 1, 2, 3 ..."
  contains "$f" "SelectorCount:-1"
  contains "$f" "| Reason:ZKRC_SELECTOR_ERROR"
  [ "$(count_of "$f" '|> ZKCA_NAMES               : Q.')" -eq 2 ] || fail "not two names shown"
  same_as trace_inquire.txt "$f"
}

# A message of each kind put and got again, the data parsed through its
# chain of headers: text, XML behind a rules-and-formatting header, a
# command-format request and response, a message on a transmission queue
# (its header carries the original descriptor) and a dead-letter message.
case_trace_messages() {
  wz_def ShowZkVersion=no ShowParsedMsgContent=yes
  ini
  run_zkqm trace_messages.scn
  expect_status 0
  same_calls trace_messages.scn
  local f
  f=$(one_file 'wz_ZKQM1_orders_*_1_001.txt')
  check_sequence "$f" >/dev/null || fail "the records of $f are not numbered 1, 2, 3 ..."
  # Each message is shown parsed twice: put and got.
  [ "$(count_of "$f" '|> <order id=')" -eq 2 ] || fail "the XML of the order is not shown twice"
  [ "$(count_of "$f" 'DataLength:')" -eq 6 ] || fail "not six gets that returned data"
  same_as trace_messages.txt "$f"
}

# The objects a queue call opens and the names the trace gives them (queue
# manager, model queue with its dynamic queue, topic, distribution list),
# the data-conversion point, the display limits of put and get data, a
# truncated get and a failed call of each queue and inquire family.
case_trace_queue_kinds() {
  wz_def ShowZkVersion=no ShowDataConvOnGet=yes ShowMaxLenPut=16 ShowMaxLenGet=8
  ini
  run_zkqm trace_queue_kinds.scn
  expect_status 0
  same_calls trace_queue_kinds.scn
  local f
  f=$(one_file 'wz_ZKQM1_queuekinds_*_1_001.txt')
  check_sequence "$f" >/dev/null || fail "the records of $f are not numbered 1, 2, 3 ..."
  [ "$(count_of "$f" '| ObjectName:(queue_manager)')" -eq 4 ] || fail "the queue manager object is not named before and after the open, on the inquire and the close"
  [ "$(count_of "$f" '| (real name):REPLY.0000000000000001')" -eq 3 ] || fail "the dynamic queue is not named after the open, on the put and the close"
  contains "$f" '| (real name):(topic) SCORES round-12/goals/scorers/assists/..'
  contains "$f" '<DATA_CONV_ON_GET'
  contains "$f" '  (Shown only leading 16 byte(s) ...)'
  contains "$f" '  (Shown only leading 8 byte(s) ...)'
  contains "$f" 'WaitInterval:50'
  contains "$f" '| ObjectName:(unknown)'
  local reason
  for reason in ZKRC_MULTIPLE_REASONS ZKRC_TRUNCATED_MSG_ACCEPTED ZKRC_NO_MSG_AVAILABLE \
    ZKRC_PUT_INHIBITED ZKRC_SELECTOR_ERROR ZKRC_UNKNOWN_OBJECT_NAME ZKRC_HOBJ_ERROR; do
    contains "$f" "| Reason:$reason"
  done
  same_as trace_queue_kinds.txt "$f"
}

# An external transaction manager's calls, traced with ShowXaCalls: XIDs in
# both layouts, an ax_reg made inside a put (its own time slot: the put's
# elapsed time is still measured from the put's before-call), xa_recover,
# and the XA errors by name; in summary-only mode each call's line carries
# its own name.
case_trace_xa() {
  wz_def ShowZkVersion=no ShowXaCalls=yes
  ini
  run_zkqm trace_xa.scn
  expect_status 0
  same_calls trace_xa.scn
  local f
  f=$(one_file 'wz_ZKQM1_payments_*_1_001.txt')
  # Numbers go by the calls counted so far: the ax_reg inside the put takes
  # the put's number (the put is counted at its after-call), so the next
  # record notes one number as left out. The whole-file comparison below
  # holds the numbering.
  # The ax_reg records stand between the before- and after-record of the put.
  awk '/^<ZKPUT$/ { put++ } /^<ax_reg$/ { if (put % 2 == 1) inside++ } END { exit inside != 2 }' "$f" ||
    fail "the ax_reg records are not inside the put"
  contains "$f" '| XA return value:XAER_NOTA'
  contains "$f" 'xa_info:"payments resource manager"'
  contains "$f" 'xa_info:(null)'
  contains "$f" 'Total number of XIDs:1'
  same_as trace_xa.txt "$f"

  rm -f "$DATA"/wz_*
  wz_def ShowZkVersion=no ShowXaCalls=yes ShowSummaryOnly=yes
  run_zkqm trace_xa.scn
  expect_status 0
  f=$(one_file 'wz_ZKQM1_payments_*_1_summary_001.txt')
  local name
  for name in xa_open xa_start xa_end xa_prepare xa_commit ax_reg xa_recover xa_rollback \
    ax_unreg xa_complete xa_close; do
    grep -qE "^ +[0-9]+ [^ ]+ [^ ]+  $name( |[0-9])" "$f" || fail "no summary line of $name"
  done
  [ "$(grep -cE '^ +[0-9]+ [^ ]+ [^ ]+  ZKCONN ' "$f")" -eq 1 ] || fail "not one summary line of ZKCONN"
}

# The exit's own debug output: loaded through wzEntryDebug it writes a
# debug file beside the trace, with the dispatcher's and the handlers' lines;
# loaded through wzEntry it writes none.
case_trace_debug_output() {
  wz_def ShowZkVersion=no
  rm -f qm.ini
  ini_stanza wz wzEntryDebug "$WZLIB" "$DATA" 1
  run_zkqm trace_short.scn
  expect_status 0
  same_calls trace_short.scn
  local debug
  debug=$(one_file 'wz_apiexit_debug_*_*_*.txt')
  contains "$debug" "$(printf 'Function :\tZKCONN   - BEFORE')"
  contains "$debug" "$(printf 'Function :\tConnBefore return 3')"
  contains "$debug" "$(printf 'Function :\tDiscAfter return 3')"
  local tab
  tab=$(printf '\t')
  grep -qvE "^\\*[0-9]{8} [0-9]{6}\\.[0-9]{6}  \\([a-z_]+\\.cpp [0-9]+\\)$tab[^$tab]*:$tab" "$debug" &&
    fail "lines of another form in the debug file: $(grep -vE '^\*' "$debug" | head -3)"
  [ -z "$(find "$DATA" -name 'wz_apiexit_debug_*' -perm /o=rwx)" ] || fail "the debug file is open to others"

  rm -rf "$DATA"
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_short.scn
  expect_status 0
  [ -z "$(find "$DATA" -name 'wz_apiexit_debug_*')" ] || fail "wzEntry wrote a debug file"
}

# Subscriptions, publications, status, callbacks and a connection event,
# traced whole: the subscription descriptor at its version with its strings,
# the topic names of subscription handles (a long one cut at 48 characters
# with ".."), PubPriority "as parent", the status structure, the message
# consumer's register, start and stop calls and the messages it gets, and an
# event handler's callback, which comes without descriptor or get options.
case_trace_subscriptions() {
  wz_def ShowZkVersion=no ShowParsedMsgContent=yes
  ini
  run_zkqm trace_subscriptions.scn
  expect_status 0
  same_calls trace_subscriptions.scn
  local f
  f=$(one_file 'wz_ZKQM1_subscriber_*_1_001.txt')
  # The callbacks START_WAIT makes come inside the ZKCTL: the first takes
  # the ZKCTL's number, as the ax_reg inside a put does (see case_trace_xa).
  contains "$f" '| (real name):(topic) results/premier-league/season-2026/rou..'
  contains "$f" '|> PubPriority              : as parent'
  contains "$f" '| Reason:ZKRC_UNKNOWN_OBJECT_NAME'
  contains "$f" '| Reason:ZKRC_NO_CALLBACKS_ACTIVE'
  contains "$f" '|> CallType                 : EVENT_CALL'
  # The event's callback shows empty descriptor and get-options dumps.
  awk '/^<ZKCB_FU$/ { n = NR } n && NR > n && /^MD:\(0=x0 bytes/ { found = 1 } END { exit !found }' "$f" ||
    fail "no empty MD dump in a callback record"
  same_as trace_subscriptions.txt "$f"
}

# without_channel_definitions FILE: the file without the dumps and fields
# of channel definitions (from each "CNO->CD" title to the title after
# them), and with the profile's channel line as ShowChannelAttributes=no
# writes it.
without_channel_definitions() {
  awk '
    /^CNO->CD:\(/ { skip = 1; next }
    skip && /^CNO->SCO:\(/ { skip = 0 }
    skip && /^(CNO|-$)/ { skip = 0 }
    !skip' "$1" | sed 's/^|  Show channel attrs : yes$/|  Show channel attrs : no/'
}

# A client connection through a client channel definition
# (trace_connect.scn): the ZKCONNX records hold the queue manager name, then
# the connect options and everything they lead to by offset (channel
# definition, TLS options, two authentication records with their LDAP user
# names, security parameters), before the call and again after it with the
# connection identifier and handle the queue manager returned; ZKBEGIN shows
# handle and begin options before and the options only after; ZKCMIT, ZKBACK
# and ZKDISC their handle before. Connect options of version 6 and a channel
# definition of version 11 are reported (banner and alert 3100) and shown at
# the highest known lengths. With ShowChannelAttributes=no the same records
# leave the channel definitions out, and nothing else.
case_trace_connect_options() {
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_connect.scn
  expect_status 0
  same_calls trace_connect.scn
  local client refused errors
  client=$(one_file 'wz_ZKQM1_clientapp_*_1_001.txt')
  refused=$(one_file 'wz_ZKQM1_newclient_*_1_001.txt')
  [ "$(check_sequence "$client")" -eq 10 ] || fail "$client does not hold 10 numbered records"
  [ "$(count_of "$client" 'QMgrName:ZKQM1                                           ')" -eq 1 ] ||
    fail "not one queue manager name of 48 characters"
  [ "$(count_of "$client" 'CNO:(188=xBC bytes, Address ')" -eq 2 ] || fail "not two CNO dumps"
  [ "$(count_of "$client" 'CNO->CD:(1876=x754 bytes, Address ')" -eq 2 ] || fail "not two CD dumps"
  [ "$(count_of "$client" 'CNO->SCO->AIR:(576=x240 bytes, Address ')" -eq 4 ] || fail "not four AIR dumps"
  [ "$(count_of "$client" 'CNO->CSP:(48=x30 bytes, Address ')" -eq 2 ] || fail "not two CSP dumps"
  [ "$(count_of "$client" '|> LDAPUserName             : cn=bob,o=orders')" -eq 2 ] || fail "no LDAP user name cn=bob,o=orders"
  [ "$(count_of "$client" 'BO:(12=xC bytes, Address ')" -eq 2 ] || fail "not two BO dumps"
  [ "$(count_of "$client" 'Hconn:0x00000001')" -eq 10 ] || fail "not ten connection handle lines (connect, two begins, commit, backout, open, two puts, close, disconnect)"
  contains "$client" "|> ConnectionId             : 5A4B434E 5A4B514D 31202020 20202020 00000000 00000001  [ZKCNZKQM1       ........]"
  [ "$(count_of "$refused" '|* Unknown : ZKCNO version 6')" -eq 2 ] || fail "ZKCNO version 6 not reported before and after"
  [ "$(count_of "$refused" '|* Unknown : ZKCD version 11')" -eq 2 ] || fail "ZKCD version 11 not reported before and after"
  [ "$(count_of "$refused" 'CNO->CSP:(48=x30 bytes, Address ')" -eq 2 ] || fail "the version 6 options do not lead on as version 5"
  errors=$(one_file 'wz_apiexit_error_*_*.txt')
  [ "$(count_of "$errors" 'Msg3100: Unknown API structure : ZKCNO version 6')" -eq 2 ] || fail "not two alerts for ZKCNO version 6"
  [ "$(count_of "$errors" 'Msg3100: Unknown API structure : ZKCD version 11')" -eq 2 ] || fail "not two alerts for ZKCD version 11"
  same_as trace_connect_client.txt "$client"
  same_as trace_connect_refused.txt "$refused"
  without_channel_definitions "$client" >client_nochl.txt
  without_channel_definitions "$refused" >refused_nochl.txt

  rm -f "$DATA"/wz_* "$DATA"/alert*
  wz_def ShowZkVersion=no ShowChannelAttributes=no
  run_zkqm trace_connect.scn
  expect_status 0
  same_calls trace_connect.scn
  client=$(one_file 'wz_ZKQM1_clientapp_*_1_001.txt')
  refused=$(one_file 'wz_ZKQM1_newclient_*_1_001.txt')
  contains "$client" "|  Show channel attrs : no"
  lacks "$client" "CNO->CD"
  lacks "$client" "|> ChannelName"
  lacks "$refused" "CNO->CD"
  lacks "$refused" "ZKCD version 11"
  [ "$(count_of "$client" 'CNO->SCO->AIR:(576=x240 bytes, Address ')" -eq 4 ] || fail "not four AIR dumps without channel definitions"
  masked client_nochl.txt >want.txt
  masked "$client" >got.txt
  diff -u want.txt got.txt >&2 || fail "ShowChannelAttributes=no changed more than the channel definitions"
  # The refused connection's banner block at the end of the file still
  # names the unknown connect options.
  contains "$refused" "|* Unknown : ZKCNO version 6"
  masked refused_nochl.txt | grep -v -e 'ZKCD version 11' -e '^|\*\{34\}$' >want.txt
  masked "$refused" | grep -v '^|\*\{34\}$' >got.txt
  diff -u want.txt got.txt >&2 || fail "ShowChannelAttributes=no changed more than the channel definition of the refused connection"
}

# bytes_before_closing_summary FILE: the size of the file without the call
# summary written when it was closed (from the "-" line in front of the
# last "|Call summary" line to the end).
bytes_before_closing_summary() {
  local n
  n=$(grep -n '^|Call summary' "$1" | tail -1 | cut -d: -f1)
  head -n $((n - 3)) "$1" | wc -c
}

# MaxFileSize 1000000 and a long run: the trace goes on in files 001, 002,
# 003 ..., each closed one renamed to ".txt", the numbers of the records
# continuing from file to file, a call's before- and after-record always in
# one file. Each file begins with the profile, each further file with the
# summary of the calls so far, and each ends with the summary of the calls
# up to its last record.
case_trace_rotation() {
  wz_def MaxFileSize=1000000 ShowZkVersion=no
  ini
  run_zkqm trace_rotate.scn
  expect_status 0
  contains out.log "repeat: 6000 iteration(s), 12000 call(s), 0 failed"
  ls "$DATA" >names.txt
  local stem
  stem=$(stem_of "$(one_file 'wz_ZKQM1_longrun_*_1_001.txt')")
  grep -v '^wz\.def$' names.txt >traces.txt
  local count
  count=$(wc -l <traces.txt)
  [ "$count" -ge 3 ] || fail "2.5 megabytes of trace in $count file(s): $(cat traces.txt)"
  local i files=() f
  for ((i = 1; i <= count; i++)); do
    f=$(printf '%s%03d.txt' "$stem" "$i")
    [ -f "$DATA/$f" ] || fail "no file $f among: $(cat traces.txt)"
    files+=("$DATA/$f")
  done
  local last
  last=$(check_sequence "${files[@]}") || fail "the records are not numbered 1, 2, 3 ... across the files"
  [ "$last" -eq 12004 ] || fail "the last record is number $last, zkqm made 12004 calls"
  local previous=0 first size
  for ((i = 0; i < count; i++)); do
    f=${files[$i]}
    sed -n 2p "$f" | grep -qx '|Program information' || fail "$f does not begin with the profile"
    first=$(grep -m1 '^|--- Seq # :' "$f" | awk '{ print $5 }')
    [ "$first" -eq $((previous + 1)) ] || fail "$f begins with record $first after $previous"
    if [ "$i" -gt 0 ]; then
      # The summary at the head of a further file counts the calls so far.
      awk '/^\|--- Seq # :/ { exit } /^\|  Total / { print $7 }' "$f" >head_total.txt
      [ "$(cat head_total.txt)" = "$previous" ] || fail "$f begins with a summary of '$(cat head_total.txt)' calls, not $previous"
    fi
    previous=$(grep '^|--- Seq # :' "$f" | tail -1 | awk '{ print $5 }')
    [ "$(last_total "$f")" -eq "$previous" ] || fail "$f ends with a summary of $(last_total "$f") calls, its last record is $previous"
    tail -n 2 "$f" | head -n 1 | grep -qx '|-*' || fail "$f does not end with the call summary"
    if [ $((i + 1)) -lt "$count" ]; then
      # A file is switched at the first call that finds it at the size or
      # beyond: it holds at least that much, and one call's records more at
      # most (the before- and after-record of a put or get, with descriptor,
      # options and data, take about 5 KB).
      size=$(bytes_before_closing_summary "$f")
      [ "$size" -ge 1000000 ] && [ "$size" -le 1010000 ] || fail "$f was switched at $size bytes"
    fi
  done
  grep -q '\.t$' names.txt && fail "a file was left open: $(cat names.txt)"
  return 0
}

# A second connection of the same program in the same process and thread
# reopens the closed trace file 001: the file holds the first connection's
# records and summary, the banner "Reopen this trace file" instead of a
# second profile, the second connection's records (numbered from 1 again:
# they are another connection's) and summary, and the closing note that
# the file was reopened.
case_trace_reopen() {
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_reopen.scn
  expect_status 0
  same_calls trace_reopen.scn
  local f
  f=$(one_file 'wz_*')
  case $f in *_001.txt) ;; *) fail "the trace file is $f, not 001.txt" ;; esac
  [ "$(count_of "$f" '|Program information')" -eq 1 ] || fail "the reopened file has a second profile"
  [ "$(count_of "$f" '|Reopen this trace file')" -eq 1 ] || fail "no reopen banner, or more than one"
  [ "$(count_of "$f" '|Call summary')" -eq 2 ] || fail "not two call summaries"
  [ "$(count_of "$f" '|**   This trace file was reopened.')" -eq 1 ] || fail "no closing note of the reopened file"
  # The banner stands between the first summary and the second connection's
  # first record; the note comes last.
  grep -n -e '^|Call summary' -e '^|Reopen this trace file' -e '^<INIT' -e '^|\*\*   This trace file was reopened' "$f" |
    cut -d: -f2- >order.txt
  printf '%s\n' '<INIT' '|Call summary - [YYYY/MM/DD hh:mm:ss.uuuuuu]' '|Reopen this trace file' '<INIT' \
    '|Call summary - [YYYY/MM/DD hh:mm:ss.uuuuuu]' '|**   This trace file was reopened.' >want.txt
  masked order.txt >order.masked
  diff -u want.txt order.masked >&2 || fail "banner, summaries and note stand in the wrong order"
  same_as trace_reopen.txt "$f"
}

# CompressCommand with CompressFileSizeThreshold: a closed trace file of at
# least the threshold is renamed once more with a further ".txt" and handed
# to the command, "$" replaced by that path, in the background; the file
# that gzip leaves is ...001.txt.txt.gz and holds the whole trace. The next
# connection of the same program does not reopen 001 (only a compressed
# file begins with its name) but starts 002, which stays below the
# threshold and is not compressed.
case_trace_compress() {
  wz_def 'CompressCommand=gzip $' CompressFileSizeThreshold=100000 ShowZkVersion=no
  ini
  run_zkqm trace_compress.scn
  expect_status 0
  [ ! -s err.txt ] || fail "messages on standard error: $(cat err.txt)"
  local second stem packed
  second=$(one_file 'wz_ZKQM1_packer_*_1_002.txt')
  stem=$(stem_of "$second")
  packed=$DATA/${stem}001.txt.txt
  wait_for 20 gzip_done "$packed" || fail "no $packed.gz within 20 seconds: $(ls "$DATA")"
  ls "$DATA" >names.txt
  [ "$(grep -c '^wz_' names.txt)" -eq 2 ] || fail "other trace files than 001.txt.txt.gz and 002.txt: $(cat names.txt)"
  gzip -dc "$packed.gz" >first.txt || fail "$packed.gz is not a gzip file"
  local last
  last=$(check_sequence first.txt) || fail "the compressed trace is not numbered 1, 2, 3 ..."
  [ "$last" -eq 804 ] || fail "the compressed trace ends with record $last, not 804"
  [ "$(last_total first.txt)" -eq 804 ] || fail "the compressed trace does not end with the summary of 804 calls"
  [ "$(wc -c <first.txt)" -ge 100000 ] || fail "the compressed trace is smaller than the threshold"
  sed -n 2p "$second" | grep -qx '|Program information' || fail "002 does not begin with a profile of its own"
  lacks "$second" "|Reopen this trace file"
  last=$(check_sequence "$second") || fail "002 is not numbered 1, 2, 3"
  [ "$last" -eq 3 ] || fail "002 ends with record $last, not 3"
}

# A trace directory the process cannot write into: opening the first trace
# file fails, alert 1001 names the file and the operation, and goes to the
# error file in the current directory (the trace directory cannot take it);
# from then on the connection is not traced (one alert only, no file), and
# every call completes exactly as without the exit. Run as an unprivileged
# user, since root may write anywhere.
case_trace_unwritable_directory() {
  local as_user=()
  if [ "$(id -u)" -eq 0 ]; then
    command -v setpriv >/dev/null || skip "running as root without setpriv"
    as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
  fi
  # Everything the unprivileged user reads is in the work directory.
  chmod 0755 "$WORK"
  mkdir bin run
  cp "$ZKQM" bin/zkqm
  cp "$WZLIB" bin/libwz.so
  cp "$SCN/trace_unwritable.scn" .
  chmod -R a+rX bin trace_unwritable.scn
  wz_def ShowZkVersion=no
  chmod 0644 "$DATA/wz.def"
  chmod 0555 "$DATA"
  if [ "$(id -u)" -eq 0 ]; then
    chown 65534:65534 run
  elif touch "$DATA/probe" 2>/dev/null; then
    skip "this user can write into a directory of mode 0555"
  fi
  ini "$DATA" "$WORK/bin/libwz.so"
  (cd run && "${as_user[@]}" "${RUN_ENV[@]}" "$WORK/bin/zkqm" --ini ../qm.ini \
    --scenario ../trace_unwritable.scn >../out.log 2>../err.txt)
  status=$?
  expect_status 0
  [ ! -s err.txt ] || fail "messages on standard error: $(cat err.txt)"
  contains out.log "c1 registrations: 41"
  same_calls trace_unwritable.scn
  [ "$(ls "$DATA")" = "wz.def" ] || fail "files in the unwritable directory: $(ls "$DATA")"
  local errors
  errors=$(ls run)
  case $errors in
    wz_apiexit_error_*_*.txt) ;;
    *) fail "not one error file in the current directory: $errors" ;;
  esac
  [ "$(count_of "run/$errors" 'Msg1001: File I/O error.')" -eq 1 ] || fail "not exactly one alert 1001"
  contains "run/$errors" "  File      : $DATA/wz_ZKQM1_nowrite_"
  contains "run/$errors" "  Operation : open"
  contains "run/$errors" "  Result    : EACCES - Permission denied (13)."
  same_as trace_unwritable.err "run/$errors"
}

# A write to the trace file fails (the process may not write files larger
# than 64 kilobytes): alert 1001 names the file, the operation and the
# error; from then on the connection is not traced: nothing more reaches the
# trace file, no further alert line is written for a failing call, and the
# only other 1001 comes from closing the file, which still tries to write
# the summary. Every call completes as without the exit.
case_trace_write_failure() {
  wz_def ShowZkVersion=no
  ini
  # Beyond the limit a write fails with EFBIG instead of ending the process.
  (trap '' XFSZ; ulimit -f 64; exec "${RUN_ENV[@]}" "$ZKQM" --ini qm.ini \
    --scenario "$SCN/trace_write_failure.scn" >out.log 2>err.txt)
  status=$?
  expect_status 0
  [ ! -s err.txt ] || fail "messages on standard error: $(cat err.txt)"
  contains out.log "repeat: 1000 iteration(s), 2000 call(s), 0 failed"
  same_calls trace_write_failure.scn
  local f errors alerts
  f=$(one_file 'wz_ZKQM1_bigfile_*_1_001.txt')
  [ "$(wc -c <"$f")" -le 65536 ] || fail "the trace file is larger than the limit"
  # The numbered records run from 1 and stop long before the last call (64
  # KB hold about 25 puts and gets with their descriptors and options). The
  # file ends where the size limit cut the last write, maybe inside a line:
  # only whole sequence lines count.
  grep -E '^\|--- Seq # : [0-9]+ -{39}$' "$f" | awk '{ if ($5 != NR) { print "record " $5 " at place " NR; exit 1 } n = $5 } END { print n }' >last.txt ||
    fail "the records before the failure are not numbered 1, 2, 3 ...: $(cat last.txt)"
  [ "$(cat last.txt)" -gt 10 ] && [ "$(cat last.txt)" -lt 1000 ] || fail "the trace stops at record $(cat last.txt)"
  lacks "$f" "|Call summary"
  errors=$(one_file 'wz_apiexit_error_*_*.txt')
  [ "$(count_of "$errors" 'Msg1001: File I/O error.')" -eq 2 ] ||
    fail "not two alerts 1001 (the failing write and the close): $(count_of "$errors" 'Msg1001')"
  [ "$(count_of "$errors" '  Operation : write')" -eq 2 ] || fail "the alerts do not name the write"
  contains "$errors" "  File      : ${f%.txt}.t"
  contains "$errors" "  Result    : EFBIG - File too large (27)."
  alerts=$(alert_file_of "$f")
  contains "$alerts" "Object : NOPE.Q"
  lacks "$alerts" "GONE.Q"
  [ "$(wc -l <"$alerts")" -eq 1 ] || fail "alert lines after the failure: $(cat "$alerts")"
}

# traced PROGRAM...: each program has one trace file with its three calls
# (connect, put1, disconnect) numbered 1 to 3.
traced() {
  local p f
  for p in "$@"; do
    f=$(one_file "wz_ZKQM1_${p}_*_1_001.txt")
    traced_in_full "$f" 3
  done
}

# untraced PROGRAM...: no trace file of the program.
untraced() {
  local p f
  for p in "$@"; do
    for f in "$DATA"/wz_ZKQM1_"$p"_*; do
      [ -e "$f" ] && fail "$p is traced: $(basename "$f")"
    done
  done
  return 0
}

# registered CONN...: the exit registered its 41 functions for each.
registered() {
  local c
  for c in "$@"; do
    contains out.log "$c registrations: 41"
  done
}

# TargetProcess (with a wildcard, and a name that also matches NAME_nd and
# NAME.exe, in any case) selects the processes to trace; an ExcludeProcess
# list beside it is ignored, so a process named in both is traced. The
# other processes are registered but, with CreateEmptyFile=no, get no file.
case_trace_target_process() {
  wz_def ShowZkVersion=no CreateEmptyFile=no TargetProcess=appput\* TargetProcess=myapp \
    ExcludeProcess=APPPUT0 ExcludeProcess=other
  ini
  run_zkqm trace_processes.scn
  expect_status 0
  same_calls trace_processes.scn
  registered p1 p2 p3 p4 p5 p6 p7 p8
  traced APPPUT0 myapp_nd myapp.exe
  untraced myapp_x other batchload BATCH2 online
  local f
  f=$(one_file 'wz_ZKQM1_APPPUT0_*_1_001.txt')
  contains "$f" "|  Target proc name   : appput*"
  contains "$f" "|  Target proc name   : myapp"
  contains "$f" "|  Exclude proc name  : (ignored because TargetProcess parameter is also specified.)"
  lacks "$f" "|  Exclude proc name  : APPPUT0"
  same_as trace_target_process.txt "$f"
}

# ExcludeProcess alone (a wildcard, any case): the processes it names are
# registered but not traced; with CreateEmptyFile=yes each gets a trace file
# that holds its profile, the connection's header record and the note why,
# and nothing more. With CreateEmptyFile=no and
# NoExitProcessIfProcNameMismatch=yes they are not even registered.
case_trace_exclude_process() {
  wz_def ShowZkVersion=no ExcludeProcess=batch\*
  ini
  run_zkqm trace_processes.scn
  expect_status 0
  same_calls trace_processes.scn
  registered p1 p2 p3 p4 p5 p6 p7 p8
  traced APPPUT0 myapp_nd myapp.exe myapp_x other online
  local f
  f=$(one_file 'wz_ZKQM1_BATCH2_*_1_001.txt')
  contains "$f" "|  *** Process name BATCH2 is not in target process name list. ***  ["
  lacks "$f" "|--- Seq # :"
  f=$(one_file 'wz_ZKQM1_batchload_*_1_001.txt')
  contains "$f" "|  *** Process name batchload is not in target process name list. ***  ["
  lacks "$f" "|--- Seq # :"
  same_as trace_exclude_empty.txt "$f"

  rm -f "$DATA"/wz_*
  wz_def ShowZkVersion=no ExcludeProcess=batch\* CreateEmptyFile=no NoExitProcessIfProcNameMismatch=yes
  run_zkqm trace_processes.scn
  expect_status 0
  same_calls trace_processes.scn
  registered p1 p2 p3 p4 p5 p8
  contains out.log "p6 registrations: 0"
  contains out.log "p7 registrations: 0"
  traced APPPUT0 myapp_nd myapp.exe myapp_x other online
  untraced batchload BATCH2
}

# records_of FILE: the masked file after its profile.
records_of() {
  masked "$1" | awk 'done { print; next } /^\|  \(Debug flag\)/ { getline; done = 1 }'
}

# TargetQueue with wildcards: the longest matching prefix wins whatever the
# order of the entries (A*, AB*, * and the reverse order give one trace);
# among entries of equal length the later one wins; the flags of the entry
# the queue was opened under decide which of its calls are traced; names
# are compared with their case; a wildcard never selects a ZKPUT1. Calls
# not traced are counted (their numbers are left out of the trace with a
# "suppressed" note) and appear in the summary.
case_trace_target_queue_wildcards() {
  wz_def ShowZkVersion=no TargetQueue=A\*,P TargetQueue=AB\*,G TargetQueue=\*,I
  ini
  run_zkqm trace_queues.scn
  expect_status 0
  same_calls trace_queues.scn
  local f
  f=$(one_file 'wz_ZKQM1_queues_*_1_001.txt')
  # Every call is counted: the summary has all the calls zkqm made.
  calls_in_log plain.log c1 >calls.txt
  summary_rows "$f" >rows.txt
  diff -u calls.txt rows.txt >&2 || fail "the summary does not count every call"
  contains "$f" "|  Target queue name  : A*  <put>"
  contains "$f" "|  Target queue name  : AB*  <get>"
  contains "$f" "|  Target queue name  : *  <inq>"
  same_as trace_queues_wildcards.txt "$f"
  records_of "$f" >first.txt

  rm -f "$DATA"/wz_*
  wz_def ShowZkVersion=no TargetQueue=\*,I TargetQueue=AB\*,G TargetQueue=A\*,P
  run_zkqm trace_queues.scn
  expect_status 0
  records_of "$(one_file 'wz_ZKQM1_queues_*_1_001.txt')" >second.txt
  diff -u first.txt second.txt >&2 || fail "the order of the TargetQueue entries changed what is traced"

  rm -f "$DATA"/wz_*
  wz_def ShowZkVersion=no TargetQueue=A\*,P TargetQueue=AB\*,G TargetQueue=\*,I TargetQueue=\*,S
  run_zkqm trace_queues.scn
  expect_status 0
  same_as trace_queues_later_star.txt "$(one_file 'wz_ZKQM1_queues_*_1_001.txt')"
}

# TargetQueue with exact names: an exact name wins over a wildcard before
# or after it; ZKPUT1 is traced only for an exact name with the put flag;
# with CountSelectedCallsOnly=yes the calls not traced are not counted
# either, so the records are numbered without gaps and the summary shows
# only the traced calls.
case_trace_target_queue_exact() {
  wz_def ShowZkVersion=no CountSelectedCallsOnly=yes TargetQueue=AB\*,G TargetQueue=ABC,P \
    TargetQueue=PQ1,P TargetQueue=PQ2,G
  ini
  run_zkqm trace_queues.scn
  expect_status 0
  same_calls trace_queues.scn
  local f last
  f=$(one_file 'wz_ZKQM1_queues_*_1_001.txt')
  last=$(check_sequence "$f") || fail "with CountSelectedCallsOnly the records have gaps"
  # connect, ABC open/put/close, put1 to ABC and PQ1, disconnect.
  [ "$last" -eq 7 ] || fail "$last records traced, not 7"
  [ "$(last_total "$f")" -eq 7 ] || fail "the summary counts $(last_total "$f") calls, not the 7 traced"
  printf '%s\n' ZKCLOSE ZKCONN ZKDISC ZKOPEN ZKPUT ZKPUT1 ZKPUT1 >want.txt
  grep '^<' "$f" | sed 's/^<//' | grep -vx -e INIT -e TERM | sort | uniq >got.txt
  sort -u want.txt | diff -u - got.txt >&2 || fail "other calls traced than open, put, close, put1, connect and disconnect"
  same_as trace_queues_exact.txt "$f"
  records_of "$f" >first.txt

  rm -f "$DATA"/wz_*
  wz_def ShowZkVersion=no CountSelectedCallsOnly=yes TargetQueue=ABC,P TargetQueue=AB\*,G \
    TargetQueue=PQ1,P TargetQueue=PQ2,G
  run_zkqm trace_queues.scn
  expect_status 0
  records_of "$(one_file 'wz_ZKQM1_queues_*_1_001.txt')" >second.txt
  diff -u first.txt second.txt >&2 || fail "an exact name after a wildcard did not win"
}

# alert_file_of TRACE: the alert file beside a trace file: "alert" in
# place of the five characters after the "/" of "/wz_", ".txt" at the end.
alert_file_of() {
  local name
  name=$(basename "$1")
  name=${name%.txt}
  name=${name%.t}
  echo "$(dirname "$1")/alert${name:5}.txt"
}

# alerts_match_trace ALERTS TRACE: each alert line names a call of the
# trace by its number, with the function, completion code and reason that
# the trace's records of that number show.
alerts_match_trace() {
  awk '
    FNR == 1 { file++ }
    file == 1 && /^\|--- Seq # : [0-9]+ -+$/ { n = $5; next }
    file == 1 && /^</ { fn = substr($0, 2); next }
    file == 1 && /^\(AFTER$/ { after = 1; next }
    file == 1 && after && /^CompCode:/ { cc = substr($0, 10); next }
    file == 1 && after && /^Reason:/ { call[n] = fn " " cc " " substr($0, 8); after = 0; next }
    file == 2 {
      if ($0 !~ /^\|--- Seq # : [0-9]+ \[/) { print "not an alert line: " $0; bad = 1; next }
      k = $5
      got = $8 " " $11 " " $14
      if (call[k] != got) { print "alert " k " says " got ", the trace " call[k]; bad = 1 }
    }
    END { exit bad }' "$2" "$1" >&2
}

# The alert file beside the trace file: one line per error (by default), per
# warning and information as well when asked for, each with the call's
# number, time, function, codes, reason name and object; PutAlertSuppress
# entries leave out what they match (codes, function, object with "*" for
# any or a prefix, process name), and an entry with an object does not
# match a call without one.
case_trace_alerts() {
  wz_def ShowZkVersion=no
  ini
  run_zkqm trace_alerts.scn
  expect_status 0
  same_calls trace_alerts.scn
  local trace alerts
  trace=$(one_file 'wz_ZKQM1_alerter_*_1_001.txt')
  alerts=$(alert_file_of "$trace")
  [ -f "$alerts" ] || fail "no alert file $(basename "$alerts"): $(ls "$DATA")"
  [ "$(wc -l <"$alerts")" -eq 3 ] || fail "not 3 error alerts: $(cat "$alerts")"
  lacks "$alerts" "Reason = 2033"
  lacks "$alerts" "Reason = 2121"
  alerts_match_trace "$alerts" "$trace" || fail "the alerts do not name the calls of the trace"
  same_as trace_alerts_errors.txt "$alerts"
  [ -f "$(alert_file_of "$(one_file 'wz_ZKQM1_quietapp_*_1_001.txt')")" ] || fail "no alert file for quietapp"

  rm -f "$DATA"/wz_* "$DATA"/alert*
  wz_def ShowZkVersion=no PutAlertFileInfo=yes PutAlertFileWarning=yes \
    'PutAlertSuppress=2,2085,ZKOPEN,NOPE*,*' \
    'PutAlertSuppress=1,2121,ZKBEGIN,APP.Q,*' \
    'PutAlertSuppress=1,2079,ZKGET,APP.Q,alerter' \
    'PutAlertSuppress=*,*,*,*,quietapp'
  run_zkqm trace_alerts.scn
  expect_status 0
  trace=$(one_file 'wz_ZKQM1_alerter_*_1_001.txt')
  alerts=$(alert_file_of "$trace")
  [ -f "$alerts" ] || fail "no alert file $(basename "$alerts"): $(ls "$DATA")"
  alerts_match_trace "$alerts" "$trace" || fail "the alerts do not name the calls of the trace"
  contains "$alerts" "  ZKOPEN   CompCode = 2  Reason = 2085 (ZKRC_UNKNOWN_OBJECT_NAME)  Object : GONE.Q"
  grep -q 'ZKOPEN .*NOPE\.Q$' "$alerts" && fail "the open of NOPE.Q was not suppressed"
  contains "$alerts" "  ZKGET    CompCode = 2  Reason = 2033 (ZKRC_NO_MSG_AVAILABLE)  Object : APP.Q"
  contains "$alerts" "  ZKBEGIN  CompCode = 1  Reason = 2121 (ZKRC_NO_EXTERNAL_PARTICIPANTS)"
  lacks "$alerts" "Reason = 2079"
  contains "$alerts" "  ZKPUT1   CompCode = 2  Reason = 2085 (ZKRC_UNKNOWN_OBJECT_NAME)  Object : NOPE.Q"
  [ "$(wc -l <"$alerts")" -eq 4 ] || fail "not 4 alerts: $(cat "$alerts")"
  same_as trace_alerts_all.txt "$alerts"
  [ ! -e "$(alert_file_of "$(one_file 'wz_ZKQM1_quietapp_*_1_001.txt')")" ] || fail "the alerts of quietapp were not suppressed"
}

# A wz.def with two bad lines among good ones, comments and blank lines:
# one alert 2008 naming the file and one 2009 per bad line, numbered by its
# physical line and quoting it, in the error file of the data directory; the
# good lines still count (ShowXaCalls=yes after the bad lines gives the 65
# registrations) and the bad ones change nothing.
case_trace_parameter_errors() {
  mkdir -p "$DATA"
  printf '%s\n' '# wz.def with two mistakes' 'ShowZkVersion=no' 'WriteBufferSize=4999' '' \
    '   # a comment' 'showsummaryonly=yes' 'ShowXaCalls=yes' >"$DATA/wz.def"
  ini
  run_zkqm trace_short.scn
  expect_status 0
  same_calls trace_short.scn
  contains out.log "c1 registrations: 65"
  local errors trace
  errors=$(one_file 'wz_apiexit_error_*_*.txt')
  [ "$(count_of "$errors" 'Msg2008: ')" -eq 1 ] || fail "not one alert 2008"
  [ "$(count_of "$errors" 'Msg2009: ')" -eq 2 ] || fail "not two alerts 2009"
  contains "$errors" "Msg2008: Invalid parameter was found in $DATA/wz.def file."
  contains "$errors" "Msg2009:   Line : 3   Parameter : WriteBufferSize=4999"
  contains "$errors" "Msg2009:   Line : 6   Parameter : showsummaryonly=yes"
  same_as trace_parameter_errors.txt "$errors"
  trace=$(one_file 'wz_ZKQM1_short_*_1_001.txt')
  contains "$trace" "|  Write buffer size  : 10,000"
  contains "$trace" "|  Show summary only  : no"
  contains "$trace" "|  Show XA trace      : yes"
  [ "$(check_sequence "$trace")" -eq 3 ] || fail "the connection is not traced"
}

# splits_after FILE: for each split summary of the file, the number of the
# last call record before it.
splits_after() {
  awk '/^\|--- Seq # : [0-9]+ -+$/ { n = $5 } /^\|Split summary \(/ { print n }' "$1"
}

# Every keyword of wz.def set: the profile at the head of the trace file
# shows each setting as it was read (synonyms: the later line wins), the
# lists in file order, the environment (ShowProcessEnvValue) and the
# platform's level as dspzkver tells it. The file ends with the call
# summary, whose counts are the calls zkqm made; split summaries come after
# every 5th call (ShowPerformanceIntervalCount) and after the call that
# ended 2 seconds after the last one (ShowPerformanceIntervalTime), and one
# more at the end. Without dspzkver on the path the version lines are
# empty.
case_trace_profile_and_summary() {
  mkdir -p "$DATA"
  cp "$SCN/trace_profile.def" "$DATA/wz.def"
  ini
  run_zkqm trace_profile.scn
  expect_status 0
  same_calls trace_profile.scn
  local f bin
  f=$(one_file 'wz_ZKQM1_profiler_*_1_001.txt')
  bin=$(cd "$(dirname "$ZKQM")" && pwd)
  # The settings as read.
  local line
  while IFS= read -r line; do
    contains "$f" "$line"
  done <<'LINES'
|  Check update req   : 60
|  Perf intvl (time)  : 2
|  Perf intvl (count) : 5
|  Show parsed data   : no
|  Max out line length: 120
|  Show hex char ccsid: (auto) 
|  Show correl id     : no
|  Show channel attrs : no
|  Show max len ZKPUT : 128
|  Show max len ZKGET : 512
|  Show max len chl   : 16
|  Show max len parsed: 1,000
|  Show max len charv : 48
|  Show max len cv str: 200
|  Count only selected: yes
|  Target queue name  : APP.Q  <put><get><inq><set>
|  Target queue name  : LOG.*  <put><get>
|  Target proc name   : other*
|  Exclude proc name  : (ignored because TargetProcess parameter is also specified.)
|  Alert file (info)  : yes
|  Suppress alert     : *, *   , ZKOPEN , *, profiler
|  Suppress summary   : *, 2033, *      , *
|  Max file size      : 2,000,000,000
|  Compress command   : gzip -f $
|  Compress threshold : 5,000,000
|  Write stream mode  : yes
|  Write cache        : no
|  Write after call   : no
|  Write buffer size  : 20,000
|  Write interval     : 5
|Environment variables
|  LC_ALL=C
LINES
  contains "$f" "|  Parameter file     : $DATA/wz.def"
  contains "$f" "|  PATH=$bin:/usr/bin:/bin"
  # The platform's level, as dspzkver shows it.
  local version level
  version=$("$DSPZKVER" | sed -n 's/^Version: *//p')
  level=$("$DSPZKVER" | sed -n 's/^Level: *//p')
  [ -n "$version" ] && [ -n "$level" ] || fail "dspzkver shows no version or level"
  contains "$f" "|  Version            : $version"
  contains "$f" "|  Level              : $level"
  # The summary at the end counts the calls zkqm made.
  calls_in_log plain.log c1 >calls.txt
  summary_rows "$f" >rows.txt
  diff -u calls.txt rows.txt >&2 || fail "the call summary does not count the calls zkqm made"
  [ "$(last_total "$f")" -eq 14 ] || fail "the summary counts $(last_total "$f") calls, not 14"
  [ "$(check_sequence "$f")" -eq 14 ] || fail "not 14 numbered records"
  splits_after "$f" | tr '\n' ' ' >splits.txt
  [ "$(cat splits.txt)" = "5 10 11 14 " ] || fail "split summaries after records $(cat splits.txt), not 5 10 11 14"
  tail -n 2 "$f" | head -n 1 | grep -qx '|' || fail "the file does not end with the split summary"
  local build
  build=$("$DSPZKVER" | sed -n 's/^BuildType: *//p')
  same_as trace_profile.txt "$f" "$bin=<BIN>" "$version=<version>" "$level=<level>" "$build=<build type>"
  # The alert file: the warning of ZKBEGIN; the information alerts of the
  # gets that found nothing are suppressed.
  local alerts
  alerts=$(alert_file_of "$f")
  [ "$(wc -l <"$alerts")" -eq 1 ] || fail "not one alert: $(cat "$alerts")"
  contains "$alerts" "  ZKBEGIN  CompCode = 1  Reason = 2121 (ZKRC_NO_EXTERNAL_PARTICIPANTS)"

  # No dspzkver on the path: a copy of zkqm in a directory of its own.
  rm -f "$DATA"/wz_* "$DATA"/alert*
  mkdir bin
  cp "$ZKQM" bin/zkqm
  "${RUN_ENV[@]}" PATH="$WORK/bin:/usr/bin:/bin" sh -c 'command -v dspzkver' >/dev/null &&
    skip "dspzkver is on the path: $("${RUN_ENV[@]}" sh -c 'command -v dspzkver')"
  wz_def ShowZkVersion=yes
  run_zkqm trace_short.scn "$WORK/bin/zkqm"
  expect_status 0
  f=$(one_file 'wz_ZKQM1_short_*_1_001.txt')
  grep -A3 -x '|Tarnvelde ZK' "$f" >version.txt
  printf '%s\n' '|Tarnvelde ZK' '|  Version            : ' '|  Level              : ' '|  Build type         : ' >want.txt
  diff -u want.txt version.txt >&2 || fail "without dspzkver the version lines are not empty"
  [ "$(check_sequence "$f")" -eq 3 ] || fail "without dspzkver the connection is not traced"
}

run_named_case
