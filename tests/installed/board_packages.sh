#!/usr/bin/env bash
# Follows the guide to the board as far as it compiles for the board: the programs run under the emulator, on
# the desk's simulated board. Packages as the guide unpacks them are made from the components of a build.
# usage: board_packages.sh BUILD_DIRECTORY VERSION DIRECTORY_OF_ROLU_SIM
set -euo pipefail
build=$1 version=$2 simulator=$3
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
[[ -x $simulator/rolu-sim ]] || { echo "there is no rolu-sim of the desk in $simulator" >&2; exit 77; }

while read -r package components; do
  mkdir -p "$work/$package/DEBIAN"
  for component in $components; do
    DESTDIR=$work/$package cmake --install "$build" --component "$component" >/dev/null
  done
  printf '%s\n' "Package: $package" "Version: $version" "Architecture: armhf" \
    "Maintainer: nobody <nobody@example.org>" "Description: stands for the package of this name" \
    >"$work/$package/DEBIAN/control"
  dpkg-deb --root-owner-group -Znone --build "$work/$package" "$work/${package}_${version}_armhf.deb" >/dev/null
done <<'END'
libkavo-rolu3 runtime
libkavo-rolu-dev development doc
rolu-tools tools
END
packages=$work tests/desk/run_guide.sh --board docs/board.md "$simulator"
