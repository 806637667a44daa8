#!/usr/bin/env bash
# Compares the library's binary interface, on the desk and on the board, with the one that is recorded
# in packaging/abi: its symbols, the types of its functions, and the values of the statuses.
# usage: abi.sh [--record]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
records=packaging/abi
# Without -fno-ipa-icf the compiler merges functions of the same code, and all but one of them lose the types
# to compare. The prefix map keeps the path of the tree out of a record.
build_options=(-G Ninja -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS=-g -fno-ipa-icf -ffile-prefix-map=$PWD/="
  -DROLU_BUILD_TESTS=OFF -DROLU_BUILD_TOOLS=OFF -DROLU_BUILD_SIMULATOR=OFF --log-level=WARNING --no-warn-unused-cli)

die() { printf 'abi: %s\n' "$*" >&2; exit 1; }

[[ $# -eq 0 || ( $# -eq 1 && $1 == --record ) ]] || { echo "usage: $0 [--record]" >&2; exit 2; }
[[ $(dpkg --print-architecture) == amd64 ]] || die "the records are compared on an amd64 machine"

# interface_of ARCHITECTURE [CMAKE OPTIONS]: builds the library with what the comparison reads, and
# writes down its interface.
interface_of() {
  local architecture=$1 build=build/abi-$1
  shift
  mkdir -p "$build"
  { cmake -S . -B "$build" "${build_options[@]}" "$@" && cmake --build "$build" --target kavo_rolu; } \
    >"$build/log" 2>&1 || { cat "$build/log" >&2; return 1; }
  abidw --exported-interfaces-only --drop-undefined-syms --headers-dir include --drop-private-types \
    --no-corpus-path --no-comp-dir-path --no-show-locs --out-file "$build/$architecture.abi" \
    "$build/libkavo_rolu.so"
}

# The functions return a status as a plain number, so the debug information does not have the values of the
# statuses.
statuses() { sed -n 's/^ *\(ROLU_STATUS_[A-Z0-9_]* = 0x[0-9A-F]*\).*/\1/p' include/kavo_rolu.h; }

# A package that uses a function must depend on the version that brought the function.
add_new_symbols() {
  local file=packaging/debian/libkavo-rolu3.symbols version symbol
  version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  {
    grep -v '^ ' "$file"
    {
      grep '^ ' "$file"
      nm -D --defined-only build/abi-amd64/libkavo_rolu.so | sed -n 's/.* \(KAVO_ROLU_[^@ ]*\)@@\(.*\)/\1@\2/p' |
        while read -r symbol; do grep -qF " $symbol " "$file" || echo " $symbol $version"; done
    } | LC_ALL=C sort
  } >build/abi-symbols
  cp build/abi-symbols "$file"
}

interface_of amd64 || die "the library could not be built for amd64"
interface_of armhf -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake || die "the library could not be built for armhf"

if [[ ${1:-} == --record ]]; then
  cp build/abi-amd64/amd64.abi build/abi-armhf/armhf.abi "$records"
  statuses >"$records/statuses"
  add_new_symbols
  echo "abi: recorded in $records and the package's symbols; commit them with the change that they belong to" >&2
  exit 0
fi

failed=0
for architecture in amd64 armhf; do
  echo "abi: the interface of $architecture against $records/$architecture.abi" >&2
  abidiff --harmless "$records/$architecture.abi" "build/abi-$architecture/$architecture.abi" >&2 || failed=1
done
echo "abi: the values of the statuses against $records/statuses" >&2
diff -u "$records/statuses" <(statuses) >&2 || failed=1
[[ $failed -eq 0 ]] || die "the binary interface is not the recorded one (see above). Programs that were built" \
  "with the released library must go on working: if the change is meant and keeps them working, renew" \
  "the record with ./run abi --record and commit it; if not, the library needs a new soname."
echo "abi: nothing has changed" >&2
