#!/usr/bin/env bash
# Builds the Debian packages for the desk and the board into build/packages, has lintian judge them,
# runs the board's under an emulator, builds all a second time elsewhere to compare the bytes, then
# installs those of this machine, uses them as their users do, and purges them.
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

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The packages in a directory, and the source package where there is one.
built() { find "$1" -maxdepth 1 \( -name '*.deb' -o -name '*.dsc' -o -name '*.tar.xz' \) -printf '%f\n' | sort; }

build() {
  local start=$SECONDS
  packaging/build.sh "$1" "$2"
  say "built for $1 in $((SECONDS - start)) s"
}

# What both architectures' packages put at the same place must be the same, so that they can be
# installed side by side; and each library must start on the C library that the guide names.
compare_architectures() {
  local package architecture
  mkdir "$work/shared"
  for package in libkavo-rolu3 libkavo-rolu-dev; do
    for architecture in "${architectures[@]}"; do
      dpkg-deb -x "$out/$architecture/${package}"_*.deb "$work/shared/$architecture"
      [[ $package != libkavo-rolu3 ]] || tests/installed/needed_c_library.sh \
        "$work/shared/$architecture"/usr/lib/*/libkavo_rolu.so.3 objdump docs/board.md >&2
      rm -rf "$work/shared/$architecture/usr/lib"
    done
  done
  diff -r "$work/shared/amd64" "$work/shared/armhf" >&2 ||
    die "the packages of the architectures differ in files that they share (see above)"
}

# The guide's programs, which are compiled with the board's packages, and the board's command, on the desk's
# simulated board.
use_emulated() {
  local files=$work/armhf library=$work/armhf/usr/lib/arm-linux-gnueabihf package
  dpkg-deb -x "$out"/amd64/rolu-tools_*.deb "$work/amd64"
  packages=$PWD/$out/armhf tests/desk/run_guide.sh --board docs/board.md "$work/amd64/usr/bin" >"$work/log" 2>&1 || {
    cat "$work/log" >&2
    die "the guide to the board does not work with the packages for armhf (see above)"
  }
  for package in libkavo-rolu3 rolu-tools; do dpkg-deb -x "$out/armhf/${package}"_*.deb "$files"; done
  # The emulator itself runs natively: only the emulated program gets the preloaded object.
  "$work/amd64/usr/bin/rolu-sim" --battery 0s=12.6 -- env -u LD_PRELOAD qemu-arm -L /usr/arm-linux-gnueabihf \
    -E LD_PRELOAD="$library/rolu-sim/librolu-sim-preload.so" -E LD_LIBRARY_PATH="$library" \
    "$files/usr/bin/rolu" get battery.voltage | tee "$work/log" >&2
  grep -q '\<12\.[56]' "$work/log" || die "rolu did not read the simulated board's 12.6 V"
}

rm -rf "$out"
for architecture in "${architectures[@]}"; do
  build "$architecture" "$out/$architecture"
  lintian --fail-on error,warning --tag-display-limit 0 "$out/$architecture"/*.changes ||
    die "lintian found something in the packages for $architecture (see above)"
done
compare_architectures
use_emulated

if [[ $twice == yes ]]; then
  for architecture in "${architectures[@]}"; do
    # Another directory, mask, time zone and language.
    (
      umask 0077
      export TZ=Pacific/Auckland LC_ALL=C.UTF-8
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
