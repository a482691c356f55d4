#!/usr/bin/env bash
# Traces the bundled sample application through zkqm and shows what happened.
set -euo pipefail
build=${1:-build}
root=$(cd "$(dirname "$0")/.." && pwd)
data=/tmp/wz-demo/
rm -rf "$data" && mkdir -p "$data"
cp "$root/sim/scenarios/demo.def" "$data/wz.def"
ini="$build/sim/qm.ini"
echo "== zkqm runs the sample application with the exit $build/lib/libwz.so"
echo "== (data directory $data, parameter file sim/scenarios/demo.def)"
"$build/bin/zkqm" --ini "$ini" --scenario "$root/sim/scenarios/demo.scn"
echo
echo "== files in $data"
ls -l "$data"
# Each trace file shown with its profile, summaries and the first before-
# and after-record of each function whole; the records of calls already
# shown are counted instead (the file itself holds every one).
for f in "$data"wz_*; do
  [ -f "$f" ] || continue
  echo
  echo "== $f (the first record of each kind; the file has them all)"
  awk '
    function flush() {
      if (n == 0) return
      if (key == "" || !(key in seen)) {
        for (i = 1; i <= n; i++) print chunk[i]
        if (key != "") seen[key] = 1
      } else {
        skipped++
      }
      n = 0; key = ""; name = ""
    }
    $0 == "-" { flush(); chunk[++n] = $0; next }
    /^<[A-Z][A-Z0-9_]*$/ && n <= 4 { name = substr($0, 2) }
    /^\((BEFORE|AFTER)$/ && name != "" && key == "" { key = name " " $0 }
    { chunk[++n] = $0 }
    END {
      flush()
      if (skipped) printf "... and %d more records of calls like those above: see the file\n", skipped
    }' "$f"
done
