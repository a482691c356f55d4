#!/usr/bin/env bash
# Checks the exit library as a host process sees it: an i386 ELF shared
# object that exports exactly the listed names and needs nothing but the C
# library and its companions (no C++ runtime).
set -u
lib=$1
expected=$2
fail=0
header=$(readelf -h "$lib")
echo "$header" | grep -q 'Class: *ELF32' || { echo "not ELF32"; fail=1; }
echo "$header" | grep -q 'Machine: *Intel 80386' || { echo "not i386"; fail=1; }
echo "$header" | grep -q 'Type: *DYN' || { echo "not a shared object"; fail=1; }
needed=$(readelf -d "$lib" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
for n in $needed; do
  case "$n" in
    libc.so.*|libm.so.*|libdl.so.*|libpthread.so.*|librt.so.*|ld-linux.so.*) ;;
    *) echo "needs $n"; fail=1 ;;
  esac
done
actual=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TtWwDdBbRrVvi]$/ {print $3}' | sed 's/@.*//' | sort -u)
# The expected list may hold several names to a line.
if ! diff <(tr -s ' \t' '\n\n' <"$expected" | sed '/^$/d' | sort -u) <(echo "$actual"); then
  echo "exported symbols differ from $expected (< expected, > actual)"
  fail=1
fi
[ $fail -eq 0 ] && echo "library ok: $(echo "$actual" | wc -l) exported names, needs: $needed"
exit $fail
