#!/usr/bin/env bash
# Masks what changes from run to run in the exit's trace, alert and error
# files, so that a whole file can be compared with an expected one:
#
#   mask_trace.sh FILE [TEXT=NAME ...]
#
# writes FILE to standard output with
#   - every TEXT given replaced by NAME (the work directory of a test, say:
#     /tmp/wze.Ab12Cd=<WORK>), in the order given; TEXT holds no "=";
#   - time stamps (2026/01/31 12:34:56.123456) as YYYY/MM/DD hh:mm:ss.uuuuuu;
#   - split durations ([00:00:02.104512]) as [hh:mm:ss.uuuuuu];
#   - elapsed and process times ("    0.000034", five places for seconds and
#     six for microseconds) as "    s.uuuuuu", the width kept;
#   - process and thread identifiers: the profile's "Process id", "Process
#     id (real)" and "Thread id  (real)" values, the "(pid.tid)" of error
#     lines, the numbers of process and thread change notes, and the process
#     identifier in trace and alert file names (wz_ZKQM1_app_<pid>_1_001.t);
#     the exit context's thread id is the scenario's and stays;
#   - the operating system's version, release, node name and machine;
#   - storage addresses in dump titles ("Address 0x...");
#   - the application's addresses that callback descriptors, control options
#     and callback contexts carry (CallbackArea, CallbackFunction,
#     ConnectionArea), and the string addresses a status structure carries:
#     in their field lines as 0x<addr>, and in the dumps of CBD, CTLO, CBC
#     and STS the words at those places as ptr*ptr* with "...." for their
#     four characters.
set -uo pipefail

file=${1:?file to mask}
shift

script=()
for pair in "$@"; do
  from=${pair%%=*}
  to=${pair#*=}
  # Literal text in an extended expression: every special character escaped.
  from=$(printf '%s' "$from" | sed 's/[][\.*^$|/(){}+?]/\\&/g')
  to=$(printf '%s' "$to" | sed 's/[\&|/]/\\&/g')
  script+=(-e "s/$from/$to/g")
done

sed -E "${script[@]}" \
  -e 's#[0-9]{4}/[0-9]{2}/[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{6}#YYYY/MM/DD hh:mm:ss.uuuuuu#g' \
  -e 's#\[[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{6}\]#[hh:mm:ss.uuuuuu]#g' \
  -e 's#^(\|  Process id         : )[0-9]+$#\1<pid>#' \
  -e 's#^(\|  Process id \(real\)  : )[0-9]+$#\1<pid>#' \
  -e 's#^(\|  Thread id  \(real\)  : )[0-9]+$#\1<tid>#' \
  -e 's#^(\|  (Process|Thread) id \(real\) has been changed from )[0-9]+ to [0-9]+\.$#\1<id> to <id>.#' \
  -e 's#\([0-9]+\.[0-9]+\) Msg#(<pid>.<tid>) Msg#g' \
  -e 's#_[0-9]+_([0-9]+_[0-9]{3,}\.t)#_<pid>_\1#g' \
  -e 's#[ 0-9]{4}[0-9]\.[0-9]{6}#    s.uuuuuu#g' \
  -e '/^\|Operating environment$/,/^\|API Exit context$/s#^(\|  (Version|Release|Node name|Machine) +: ).*$#\1<masked>#' \
  -e 's#Address [0-9A-Fa-fx]+\)#Address <addr>)#g' \
  -e 's#^(\|> (CallbackArea|CallbackFunction|ConnectionArea) +: )0x[0-9A-F]{8}$#\10x<addr>#' \
  -e '/^STS:\(/,/^-$/s#^(\|>   VSPtr +: )0x[0-9A-F]{8}$#\10x<addr>#' \
  "$file" | LC_ALL=C awk '
  function hexval(text,    i, v) {
    v = 0
    for (i = 1; i <= length(text); i++) v = v * 16 + index("0123456789ABCDEF", substr(text, i, 1)) - 1
    return v
  }
  # Byte offsets of the address words in the dumps of these structures.
  BEGIN {
    pointers["CBD"] = " 16 20 "
    pointers["CTLO"] = " 16 "
    pointers["CBC"] = " 16 20 "
    pointers["STS"] = " 224 244 "
  }
  /^[A-Za-z>-]+:\(/ { title = substr($0, 1, index($0, ":(") - 1); print; next }
  /^[0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F]:/ && (title in pointers) {
    base = hexval(substr($0, 1, 8))
    hex = substr($0, 10, 35)
    open = index($0, "  [")
    chars = substr($0, open + 3, length($0) - open - 3)
    n = split(hex, words, " ")
    out = ""
    for (w = 1; w <= n; w++) {
      if (index(pointers[title], " " (base + 4 * (w - 1)) " ") > 0 && length(words[w]) == 8) {
        words[w] = "ptr*ptr*"
        chars = substr(chars, 1, 4 * (w - 1)) "...." substr(chars, 4 * w + 1)
      }
      out = out (w > 1 ? " " : "") words[w]
    }
    printf "%s:%-35s  [%s]\n", substr($0, 1, 8), out, chars
    next
  }
  /^[0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][0-9A-F][:-]/ { print; next }
  { title = ""; print }'
