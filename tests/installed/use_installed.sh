#!/usr/bin/env bash
# Follows the guides to the packages and to the board with the installed files, and checks what the programs of
# the former print; the commands of the latter check that themselves. PATH, PKG_CONFIG_PATH, CMAKE_PREFIX_PATH
# and LD_RUN_PATH may name another installation than the system's.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

output=$(tests/desk/run_guide.sh docs/packages.md)
printf '%s\n' "$output"
tests/desk/run_guide.sh docs/board.md

# The guide builds one program with pkg-config and one with CMake, then runs the command.
voltages=$(grep -cx 'car battery: 12\.60 V' <<<"$output") || true
[[ $voltages -eq 2 ]] || { echo "the programs saw the battery $voltages times, not twice" >&2; exit 1; }
grep -q 'Car battery' <<<"$output" || { echo "rolu did not show the battery" >&2; exit 1; }
