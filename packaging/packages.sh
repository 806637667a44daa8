#!/usr/bin/env bash
# Builds the Debian packages for the desk and the board into build/packages, has lintian judge them,
# builds them a second time elsewhere to compare the bytes, then installs those of this machine, uses
# them as their users do, and purges them.
# usage: packages.sh [--once] [--no-install]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
architectures=(amd64 armhf)
out=build/packages
twice=yes install=yes

say() { printf 'package: %s\n' "$*" >&2; }
die() { say "$*"; exit 1; }

for argument in "$@"; do
  case $argument in
    --once) twice=no ;;
    --no-install) install=no ;;
    *) echo "usage: $0 [--once] [--no-install]" >&2; exit 2 ;;
  esac
done
[[ $(dpkg --print-architecture) == amd64 ]] || die "the packages are made on an amd64 machine"
[[ $install == no ]] || packaging/install_test.sh --may-install

built() { find "$1" -maxdepth 1 -name '*.deb' -printf '%f\n' | sort; }

build() {
  local start=$SECONDS
  packaging/build.sh "$1" "$2"
  say "built for $1 in $((SECONDS - start)) s"
}

# What both architectures' packages put at the same place must be the same, so that they can be
# installed side by side.
compare_architectures() {
  local package work
  work=$(mktemp -d)
  for package in libkavo-rolu3 libkavo-rolu-dev; do
    for architecture in "${architectures[@]}"; do
      dpkg-deb -x "$out/$architecture/${package}"_*.deb "$work/$architecture"
      rm -rf "$work/$architecture"/usr/lib
    done
  done
  diff -r "$work/${architectures[0]}" "$work/${architectures[1]}" >&2 ||
    { rm -rf "$work"; die "the packages of the architectures differ in files that they share (see above)"; }
  rm -rf "$work"
}

rm -rf "$out"
for architecture in "${architectures[@]}"; do
  build "$architecture" "$out/$architecture"
  lintian --fail-on error,warning --tag-display-limit 0 "$out/$architecture"/*.changes ||
    die "lintian found something in the packages for $architecture (see above)"
done
compare_architectures

if [[ $twice == yes ]]; then
  for architecture in "${architectures[@]}"; do
    # Another directory, mask, time zone and language; a compiler cache would hand out the first objects.
    (
      umask 0002
      export TZ=Pacific/Auckland LC_ALL=C.UTF-8
      unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
      build "$architecture" "$out/built-again/$architecture"
    )
    [[ $(built "$out/$architecture") == "$(built "$out/built-again/$architecture")" ]] ||
      die "the second build for $architecture made other packages"
    for package in $(built "$out/$architecture"); do
      cmp "$out/$architecture/$package" "$out/built-again/$architecture/$package" ||
        die "$package differs when it is built again; diffoscope tells where"
    done
    say "the packages for $architecture have the same bytes when they are built again"
  done
fi

[[ $install == no ]] || packaging/install_test.sh "$out"/amd64/{libkavo-rolu3,libkavo-rolu-dev,rolu-tools}_*.deb
(cd "$out" && sha256sum {amd64,armhf}/*.deb)
say "the packages are in $out/amd64 and $out/armhf"
