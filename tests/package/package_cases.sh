#!/usr/bin/env bash
# Tests of what wz installs and ships: `cmake --install` into a scratch
# prefix, the Debian package that cpack makes, the installed exit loaded by
# zkqm, and the version shown by the programs and in the trace profile.
#
#   package_cases.sh CASE BUILD SOURCE VERSION ZKQM READER
#
# BUILD is the build folder, SOURCE the source folder, VERSION the
# project's version, ZKQM the zkqm of the build, READER "yes" when the
# build has the trace reader wzreform (its files are then expected too).
# Each case works in a fresh directory /tmp/wzp.XXXXXX (short: the exit
# data has room for 32 characters). Exit status 0 passes, anything else
# fails.
set -uo pipefail

case_name=${1:?case}
BUILD=${2:?build folder}
SOURCE=${3:?source folder}
VERSION=${4:?version}
ZKQM=${5:?path of zkqm}
READER=${6:?yes or no}
SCN=$SOURCE/tests/e2e/scenarios

fail() {
  echo "FAIL [$case_name]: $*" >&2
  exit 1
}

WORK=$(mktemp -d /tmp/wzp.XXXXXX) || exit 1
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1

# The environment zkqm runs in: nothing but a path and the C locale.
RUN_ENV=(env -i PATH=/usr/bin:/bin LC_ALL=C)

# expected_files ROOT: the files and links an install puts under ROOT (the
# prefix), one path a line, sorted.
expected_files() {
  local doc
  {
    echo "$1/lib/wz/libwz.so"
    echo "$1/share/doc/wz/README.md"
    echo "$1/share/doc/wz/wz.def.sample"
    echo "$1/share/doc/wz/qm.ini.sample"
    for doc in "$SOURCE"/docs/*.md; do
      echo "$1/share/doc/wz/$(basename "$doc")"
    done
    if [ "$READER" = yes ]; then
      echo "$1/bin/wzreform"
      echo "$1/bin/wzreform32"
    fi
  } | LC_ALL=C sort
}

# tree_files DIR: the files and links under DIR, sorted.
tree_files() {
  find "$1" \( -type f -o -type l \) | LC_ALL=C sort
}

# same_list WANT GOT WHAT: the two lists are equal.
same_list() {
  diff -u "$1" "$2" >&2 || fail "$3 (- expected, + found)"
}

# install_prefix PREFIX [ARG...]: cmake --install of the build into PREFIX.
install_prefix() {
  local prefix=$1
  shift
  cmake --install "$BUILD" --prefix "$prefix" "$@" >install.log 2>&1 || {
    cat install.log >&2
    fail "cmake --install into $prefix failed"
  }
}

# check_library FILE: an i386 shared object whose SONAME carries the
# version.
check_library() {
  readelf -h "$1" | grep -q 'Class: *ELF32' || fail "$1 is not ELF32"
  readelf -h "$1" | grep -q 'Machine: *Intel 80386' || fail "$1 is not i386"
  local soname
  soname=$(readelf -d "$1" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
  [ "$soname" = "libwz.so.$VERSION" ] || fail "$1 has the SONAME '$soname', not libwz.so.$VERSION"
}

# check_reader BINDIR: wzreform is there, wzreform32 is the same program
# (a link to it or a file of its own), and both show the version.
check_reader() {
  [ -x "$1/wzreform" ] || fail "$1/wzreform is not an executable file"
  if [ -L "$1/wzreform32" ]; then
    [ "$(readlink "$1/wzreform32")" = wzreform ] || fail "wzreform32 links to $(readlink "$1/wzreform32")"
  else
    [ -f "$1/wzreform32" ] && [ -x "$1/wzreform32" ] || fail "$1/wzreform32 is neither a link nor a program"
  fi
  local name out
  for name in wzreform wzreform32; do
    out=$("$1/$name" --version 2>&1) || fail "$name --version failed: $out"
    grep -qw -- "$VERSION" <<<"$out" || fail "$name --version shows '$out', not the version $VERSION"
  done
}

# check_qm_ini FILE LIBRARY: the qm.ini sample is one ApiExitLocal stanza
# that loads LIBRARY through wzEntry.
check_qm_ini() {
  grep -qx 'ApiExitLocal:' "$1" || fail "$1 has no ApiExitLocal stanza"
  grep -qx "   Module=$2" "$1" || fail "$1 does not name $2: $(grep Module "$1")"
  grep -qx '   Function=wzEntry' "$1" || fail "$1 does not name wzEntry"
}

# trace_through QMINI DATA: zkqm of the build runs trace_short.scn through
# the exit that QMINI names, with its data directory DATA; the trace file
# must show the version in the profile and the three calls.
trace_through() {
  local ini=$1 data=$2
  rm -rf "$data" && mkdir -p "$data"
  printf '%s\n' ShowZkVersion=no >"$data/wz.def"
  "${RUN_ENV[@]}" "$ZKQM" --ini "$ini" --scenario "$SCN/trace_short.scn" >zkqm.log 2>zkqm.err || {
    cat zkqm.log zkqm.err >&2
    fail "zkqm failed with $ini"
  }
  grep -q '^exit wz: wzEntry in ' zkqm.log || {
    cat zkqm.log >&2
    fail "zkqm did not load the exit"
  }
  local files=("$data"/wz_ZKQM1_short_*_1_001.txt)
  [ ${#files[@]} -eq 1 ] && [ -f "${files[0]}" ] || fail "no one trace file in $data: $(ls "$data")"
  local f=${files[0]}
  # The first Version line of the profile is the exit's own, under its
  # program information (tests/e2e/expected/trace_profile.txt).
  grep -A2 -x '|Program information' "$f" >profile.txt
  printf '%s\n' '|Program information' '|  Program name       : wz API call trace exit for ZK' \
    "|  Version            : $VERSION" >want.txt
  diff -u want.txt profile.txt >&2 || fail "the trace profile does not show the version $VERSION"
  # One numbered record a call, each with its before- and after-part.
  grep -E '^\|--- Seq # : [0-9]+ -|^<ZK|^\((BEFORE|AFTER)$' "$f" | sed 's/ -*$//' >calls.txt
  printf '%s\n' '|--- Seq # : 1' '<ZKCONN' '(BEFORE' '<ZKCONN' '(AFTER' \
    '|--- Seq # : 2' '<ZKPUT1' '(BEFORE' '<ZKPUT1' '(AFTER' \
    '|--- Seq # : 3' '<ZKDISC' '(BEFORE' '<ZKDISC' '(AFTER' >want.txt
  diff -u want.txt calls.txt >&2 || fail "$f does not hold the records of ZKCONN, ZKPUT1 and ZKDISC"
}

# ---- cases --------------------------------------------------------------------

# cmake --install puts exactly the exit, the documents and the reader under
# the prefix, and the test tools only with their component.
case_install_tree() {
  local prefix=$WORK/p
  install_prefix "$prefix"
  expected_files "$prefix" >want.txt
  tree_files "$prefix" >got.txt
  same_list want.txt got.txt "cmake --install did not install exactly the expected files"
  check_library "$prefix/lib/wz/libwz.so"
  check_qm_ini "$prefix/share/doc/wz/qm.ini.sample" "$prefix/lib/wz/libwz.so"
  cmp -s "$SOURCE/README.md" "$prefix/share/doc/wz/README.md" || fail "the installed README.md is not the source's"
  cmp -s "$SOURCE/docs/wz.def.sample" "$prefix/share/doc/wz/wz.def.sample" ||
    fail "the installed wz.def.sample is not the source's"
  if [ "$READER" = yes ]; then
    check_reader "$prefix/bin"
  fi

  # The test tools: only with their component, and nothing else with it.
  local tools=$WORK/t
  install_prefix "$tools" --component testtools
  printf '%s\n' "$tools/libexec/wz/dspzkver" "$tools/libexec/wz/zkqm" >want.txt
  tree_files "$tools" >got.txt
  same_list want.txt got.txt "the testtools component does not hold exactly zkqm and dspzkver"
  "$tools/libexec/wz/zkqm" --version >version.txt || fail "the installed zkqm does not run"
}

# The installed exit, loaded through the qm.ini sample installed with it
# (its data directory changed), traces a short scenario.
case_install_traces() {
  local prefix=$WORK/p
  install_prefix "$prefix"
  sed "s|^   Data=.*|   Data=$WORK/d/|" "$prefix/share/doc/wz/qm.ini.sample" >qm.ini
  grep -qx "   Data=$WORK/d/" qm.ini || fail "the qm.ini sample has no Data line"
  trace_through qm.ini "$WORK/d"
}

# cpack makes wz_<version>_i386.deb: its fields, its files under /opt/wz,
# and the exit extracted from it traces as the built one does.
case_deb() {
  cpack --config "$BUILD/CPackConfig.cmake" -B "$WORK/pkg" >cpack.log 2>&1 || {
    cat cpack.log >&2
    fail "cpack failed"
  }
  local deb=$WORK/pkg/wz_${VERSION}_i386.deb
  [ -f "$deb" ] || fail "cpack made no $deb: $(ls "$WORK/pkg")"
  [ "$(dpkg-deb -f "$deb" Package)" = wz ] || fail "Package is $(dpkg-deb -f "$deb" Package)"
  [ "$(dpkg-deb -f "$deb" Version)" = "$VERSION" ] || fail "Version is $(dpkg-deb -f "$deb" Version)"
  [ "$(dpkg-deb -f "$deb" Architecture)" = i386 ] || fail "Architecture is $(dpkg-deb -f "$deb" Architecture)"
  [ -n "$(dpkg-deb -f "$deb" Maintainer)" ] || fail "no Maintainer"
  [ -n "$(dpkg-deb -f "$deb" Description)" ] || fail "no Description"

  # The files, as the package lists them and as they come out of it.
  expected_files ./opt/wz >want.txt
  dpkg-deb -c "$deb" | awk '$1 !~ /^d/ {print $6}' | LC_ALL=C sort >got.txt
  same_list want.txt got.txt "the package does not hold exactly the expected files"
  local root=$WORK/r
  dpkg-deb -x "$deb" "$root" || fail "dpkg-deb -x failed"
  expected_files "$root/opt/wz" >want.txt
  tree_files "$root" >got.txt
  same_list want.txt got.txt "the extracted package does not hold exactly the expected files"
  check_library "$root/opt/wz/lib/wz/libwz.so"
  check_qm_ini "$root/opt/wz/share/doc/wz/qm.ini.sample" /opt/wz/lib/wz/libwz.so
  if [ "$READER" = yes ]; then
    check_reader "$root/opt/wz/bin"
  fi

  # Depends: libc6 alone, at least at the newest GLIBC_ version that the
  # binaries of the package use.
  local depends newest elf
  depends=$(dpkg-deb -f "$deb" Depends)
  newest=$(for elf in "$root"/opt/wz/lib/wz/libwz.so "$root"/opt/wz/bin/*; do
    [ -f "$elf" ] && [ ! -L "$elf" ] && objdump -T "$elf"
  done | grep -oE '\bGLIBC_[0-9]+(\.[0-9]+)+' | sed 's/GLIBC_//' | sort -V | tail -n 1)
  [ -n "$newest" ] || fail "no GLIBC_ version found in the binaries"
  [ "$depends" = "libc6 (>= $newest)" ] || fail "Depends is '$depends', not 'libc6 (>= $newest)'"

  # The packaged (stripped) exit works.
  printf '%s\n' 'ApiExitLocal:' '   Name=wz' '   Function=wzEntry' \
    "   Module=$root/opt/wz/lib/wz/libwz.so" "   Data=$WORK/d/" >qm.ini
  trace_through qm.ini "$WORK/d"
}

# zkqm --version shows the project's version.
case_zkqm_version() {
  local out
  out=$("$ZKQM" --version) || fail "zkqm --version failed"
  [ "$out" = "zkqm $VERSION" ] || fail "zkqm --version shows '$out', not 'zkqm $VERSION'"
  "$ZKQM" --help | grep -q -- '--version' || fail "zkqm --help does not list --version"
}

"case_$case_name"
