#!/usr/bin/env bash
# Installs what the build and the tests need, when it is missing.
set -euo pipefail
# g++-multilib brings gcc's 32-bit AddressSanitizer and
# UndefinedBehaviorSanitizer runtimes as well (`make test-sanitize`).
packages=(g++-multilib cmake make googletest binutils file gzip bc)
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
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi
