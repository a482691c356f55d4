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
for f in "$data"wz_*; do
  [ -f "$f" ] || continue
  echo
  echo "== $f"
  cat "$f"
done
