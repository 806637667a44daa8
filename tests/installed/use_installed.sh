#!/usr/bin/env bash
# Follows the guide to the packages with what is installed, and looks at what its programs print. The
# environment may name another installation than the system's: PATH, PKG_CONFIG_PATH, CMAKE_PREFIX_PATH,
# LD_RUN_PATH.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

output=$(tests/desk/run_guide.sh docs/packages.md)
printf '%s\n' "$output"

# One program by pkg-config, one by CMake, then the command.
voltages=$(grep -cx 'car battery: 12\.60 V' <<<"$output") || true
[[ $voltages -eq 2 ]] || { echo "the programs saw the battery $voltages times, not twice" >&2; exit 1; }
grep -q 'Car battery' <<<"$output" || { echo "rolu did not show the battery" >&2; exit 1; }
