#!/usr/bin/env bash
# Runs a command with its output in a log file instead of the terminal.
#
#   quietly.sh [--keep] LOG NOTE COMMAND [ARG...]
#
# NOTE is shown while the command runs. Without --keep it is shown on a
# terminal only and wiped when the command succeeds, so that what follows
# starts on a clean screen; with --keep it stays, as a line of its own.
# When the command fails, the end of the log follows, and the command's
# exit status is returned.
set -u
keep=0
if [ "${1:-}" = --keep ]; then
  keep=1
  shift
fi
log=$1 note=$2
shift 2
mkdir -p "$(dirname "$log")"
tty=0
[ -t 1 ] && tty=1
if [ $keep -eq 1 ]; then
  echo "$note (output in $log)"
elif [ $tty -eq 1 ]; then
  printf '%s (output in %s) ...' "$note" "$log"
fi
"$@" >"$log" 2>&1
status=$?
[ $keep -eq 0 ] && [ $tty -eq 1 ] && printf '\r\033[K'
if [ $status -ne 0 ]; then
  echo "$note: failed with status $status; the end of $log:" >&2
  tail -n 40 "$log" >&2
fi
exit $status
