#!/usr/bin/env bash
# Sees that the library needs the C library alone (the dynamic linker is part of it), and none later than the guide
# to the board promises.
# usage: needed_c_library.sh LIBRARY OBJDUMP GUIDE
set -euo pipefail
library=$1 objdump=$2 guide=$3
fail() { echo "needed_c_library: $*" >&2; exit 1; }

headers=$("$objdump" -p "$library")
needed=$(awk '$1 == "NEEDED" && $2 !~ /^ld-linux/ { print $2 }' <<<"$headers" | xargs)
[[ $needed == libc.so.6 ]] || fail "the library needs '$needed', not libc.so.6 alone"
latest=$(grep -o 'GLIBC_[0-9.]*$' <<<"$headers" | sort -V | tail -n 1)
promised=$(grep -o -m 1 'GLIBC_[0-9.]*' "$guide")
[[ -n $latest && $(printf '%s\n' "$latest" "$promised" | sort -V | tail -n 1) == "$promised" ]] ||
  fail "the library needs '$latest', but $guide promises $promised; $objdump -T names the symbols, and" \
    "cmake/older_symbols.h binds a symbol to its first version"
echo "the library needs $latest, as the guide says or less"
