#!/usr/bin/env bash
# Proves that the list of what a new question of the MCU needs, in CONTRIBUTING.md, is complete.
# Applies new_query.patch to a copy of the tree and runs all tests there.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

fail() { printf 'prove: %s\n' "$*" >&2; exit 1; }

patch=tests/new_query/new_query.patch
[[ $(git apply --numstat "$patch" | wc -l) -le 6 ]] || fail "$patch touches more than six files"
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
git ls-files -z | xargs -0 cp --parents -t "$copy"
patch=$PWD/$patch
cd "$copy"
git init -q
git add -A
git apply "$patch" || fail "$patch does not fit this tree any more"
./run test || fail "a test fails with the new question"

said=$(build/release/simulator/rolu-sim run --trace - -- build/release/tools/rolu get backup.cycles 2>&1)
printf '%s\n' "$said"
[[ $said == *'backup.cycles  42'* ]] || fail "rolu does not know the new question"
[[ $said == *'read how often the backup battery has been charged'* ]] || fail "the trace has no words for it"
./run abi --record
grep -q KAVO_ROLU_VPM_GetBackupBatteryCycles packaging/debian/libkavo-rolu3.symbols ||
  fail "the package's symbols do not have the new function"
echo "prove: six files are enough for a new question"
