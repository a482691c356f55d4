#!/usr/bin/env bash
# Installs what the build and the tests need, when it is missing.
set -euo pipefail
# g++-multilib brings gcc's 32-bit AddressSanitizer and
# UndefinedBehaviorSanitizer runtimes as well (`make test-sanitize`).
# `make package` needs nothing more: cpack (in cmake) writes the .deb
# itself, without dpkg-deb or fakeroot, and readelf (binutils) gives the
# package's Depends; the package tests read the .deb with dpkg-deb, which
# every Debian system has.
# zstd and python3: wzreform's tests read zstd-compressed traces and check
# its JSON output.
packages=(g++-multilib cmake make googletest binutils file gzip bc zstd python3)
# `install-deps.sh fuzz`: also what the fuzzing build needs (clang and its
# 32-bit sanitizer and libFuzzer runtimes).
if [ "${1:-}" = fuzz ]; then
  packages+=(clang-14 libclang-rt-14-dev)
fi
# `install-deps.sh bench`: the tools the benchmark scripts count with.
if [ "${1:-}" = bench ]; then
  packages+=(valgrind strace)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  # One line here; apt's own output goes to a log, shown only on failure.
  log=${TMPDIR:-/tmp}/wz-install-deps.log
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  "$(dirname "$0")/quietly.sh" --keep "$log" "Installing ${missing[*]}" \
    sh -c "$SUDO apt-get update -q && DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -q $(printf '%q ' "${missing[@]}")"
fi
