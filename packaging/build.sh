#!/usr/bin/env bash
# Builds the Debian packages of one architecture from the files that git tracks here, as they are now.
# usage: build.sh ARCHITECTURE DIRECTORY; the packages come into DIRECTORY, which must be empty or absent.
set -euo pipefail
architecture=$1 directory=$2

die() { printf 'build.sh: %s\n' "$*" >&2; exit 1; }

mkdir -p "$directory"
directory=$(cd "$directory" && pwd)
[[ -z $(ls -A "$directory") ]] || die "$directory is not empty"
cd "$(dirname "${BASH_SOURCE[0]}")/.."
git rev-parse --is-inside-work-tree >/dev/null || die "packages are made from the files that git tracks; this is not a clone"

changelog=packaging/debian/changelog
version=$(dpkg-parsechangelog -l "$changelog" -S Version)
grep -q "^project(kavo_rolu VERSION $version " CMakeLists.txt ||
  die "CMakeLists.txt and $changelog (version $version) are not of the same version"

# The files have the time of the release and the usual modes, whenever and however they were checked out.
umask 022
tree=$directory/kavo-rolu-$version
mkdir "$tree"
git ls-files -z | tar -c --null -T - --mode=u=rwX,go=rX \
  --mtime="@$(dpkg-parsechangelog -l "$changelog" -S Timestamp)" | tar -x -C "$tree"
mv "$tree/packaging/debian" "$tree/debian"

# With a compiler cache, objects would name other places of their sources, and one build would get the objects
# of another.
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER

cd "$tree"
case $architecture in
  "$(dpkg --print-architecture)") options=(--build=full) ;;
  *) options=(--build=binary --host-arch "$architecture") ;;
esac
dpkg-buildpackage --no-sign "${options[@]}" >"$directory/log" 2>&1 || {
  tail -n 40 "$directory/log" >&2
  die "building for $architecture failed; all that it said is in $directory/log"
}
