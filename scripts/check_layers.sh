#!/bin/sh
# Checks that the exit's folders include one another in one direction only:
#
#   zk/ <- text/ <- config/ <- output/ <- format/ <- exit/ <- handlers/
#
# A file may include headers of its own folder and of the folders to its
# left. The exception are the hub headers that every layer uses (the
# control block, the alert messages, the queue handle list, the debug output and the safe
# opening of files, which the parameter file, the trace files and the alert
# files all go through): they sit in exit/ and may be included from
# anywhere. Prints every include that points
# the wrong way and exits 1 when there is one.
#
#   scripts/check_layers.sh [SOURCE_DIR]
set -eu
cd "${1:-$(dirname "$0")/..}"

hubs="exit/control_block.h exit/alerts.h exit/message_catalogue.h exit/handle_list.h exit/exit_files.h exit/debug_output.h"

rank() {
  case $1 in
  zk) echo 0 ;; text) echo 1 ;; config) echo 2 ;; output) echo 3 ;;
  format) echo 4 ;; exit) echo 5 ;; handlers) echo 6 ;; *) echo -1 ;;
  esac
}

bad=0
for file in $(find text config output format exit handlers zk -name '*.h' -o -name '*.cpp' -o -name '*.c' | sort); do
  from=${file%%/*}
  fromRank=$(rank "$from")
  for included in $(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' "$file"); do
    to=${included%%/*}
    toRank=$(rank "$to")
    [ "$toRank" -ge 0 ] || continue
    [ "$toRank" -le "$fromRank" ] && continue
    case " $hubs " in *" $included "*) continue ;; esac
    echo "$file includes $included: $from/ must not include $to/"
    bad=1
  done
done
exit $bad
