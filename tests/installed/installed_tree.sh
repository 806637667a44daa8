#!/usr/bin/env bash
# Installs a build tree into a staging directory, moves the result elsewhere and uses it there.
# usage: installed_tree.sh BUILD_DIRECTORY LIBRARY_DIRECTORY VERSION; the second is relative to the prefix.
set -euo pipefail
build=$1 library_directory=$2 version=$3
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source_directory=$(cd "$here/../.." && pwd)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "installed_tree: $*" >&2; exit 1; }

DESTDIR=$work/stage cmake --install "$build" --prefix /opt/kavo >"$work/log" || { cat "$work/log"; exit 1; }
prefix=$work/moved
mv "$work/stage/opt/kavo" "$prefix"
strays=$(find "$work/stage" ! -type d)
[[ -z $strays ]] || fail "installed outside the prefix: $strays"
traces=$(grep -rlF -e "$build" -e "$source_directory/" -e "$work" "$prefix") || true
[[ -z $traces ]] || fail "these name a directory of the build: $traces"

library=$prefix/$library_directory
for link in libkavo_rolu.so libkavo_rolu.so.3; do
  [[ $(readlink -f "$library/$link") == "$library/libkavo_rolu.so.$version" ]] || fail "$link leads elsewhere"
done
mapfile -t functions < <(sed -n 's/^KAVO_ROLU_API ROLU_STATUS \(KAVO_ROLU_[A-Za-z0-9_]*\)(.*/\1/p' \
  "$prefix/include/kavo_rolu.h")
[[ ${#functions[@]} -gt 0 ]] || fail "the installed header declares nothing"
pages=(man1/rolu.1 man1/rolu-sim.1 man7/kavo_rolu.7 "${functions[@]/%/.3}")
for page in "${pages[@]/#KAVO/man3/KAVO}"; do
  [[ -s $prefix/share/man/$page ]] || fail "there is no manual page $page"
  [[ $page == man3/* ]] || continue
  family=$(sed -n 's/^\.BR \(kavo_rolu_[a-z]*\) (3)$/\1/p' "$prefix/share/man/$page")
  [[ -n $family && -s $prefix/share/man/man3/$family.3 ]] || fail "$page leads to the page '$family', which is not there"
done
for program in rolu rolu-sim; do
  bash -n "$prefix/share/bash-completion/completions/$program"
done

# The components are the packages: those of each give what the package's list takes out of the whole.
files_of() { (cd "$1" && find . ! -type d | sort); }
while read -r package components; do
  whole=$work/whole-$package parts=$work/parts-$package
  mkdir -p "$whole" "$parts"
  while read -r pattern; do
    pattern=${pattern/lib\/\*/$library_directory}
    # shellcheck disable=SC2086 # a pattern
    (cd "$prefix" && cp -a --parents ${pattern#usr/} "$whole")
  done <"$source_directory/packaging/debian/$package.install"
  for component in $components; do
    cmake --install "$build" --prefix "$parts" --component "$component" >>"$work/log"
  done
  diff <(files_of "$whole") <(files_of "$parts") || fail "the package $package (<) is not the components $components (>)"
done <<'END'
libkavo-rolu3 runtime
libkavo-rolu-dev development doc
rolu-tools tools
END
diff <(files_of "$prefix") <(for parts in "$work"/parts-*; do files_of "$parts"; done | sort) ||
  fail "the components (>) are not the whole (<)"

# The guide explains the options of the build in their own words.
# shellcheck disable=SC2016 # the backticks are those of Markdown
options=$(sed -n -e 's/^ *option(\(ROLU_[A-Z_]*\) "\(.*\)" O.*/| `\1` | \2 |/p' \
  -e 's/^set(\(ROLU_[A-Z_]*\) .* CACHE STRING "\(.*\)")/| `\1` | \2 |/p' "$source_directory/CMakeLists.txt" | sort -u)
[[ -n $options ]] || fail "CMakeLists.txt has no options"
# shellcheck disable=SC2016
diff <(printf '%s\n' "$options") <(grep '^| `ROLU_' "$source_directory/docs/packages.md" | sort -u) ||
  fail "docs/packages.md (>) does not explain the options of CMakeLists.txt (<)"

export PATH=$prefix/bin:$PATH
export PKG_CONFIG_PATH=$library/pkgconfig
export CMAKE_PREFIX_PATH=$prefix
# The path from pkg-config serves the linking, not the running.
export LD_RUN_PATH=$library
[[ $(command -v rolu-sim) == "$prefix/bin/rolu-sim" ]] || fail "another rolu-sim comes first"
[[ $(pkg-config --modversion kavo_rolu) == "$version" ]] || fail "pkg-config names another version"

mkdir "$work/later"
cat >"$work/later/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.13)
project(later C)
find_package(kavo_rolu $((${version%%.*} + 1)) REQUIRED)
END
if cmake -S "$work/later" -B "$work/later/build" >"$work/log" 2>&1; then
  fail "CMake takes this version for a later one"
fi
grep -q "version: $version" "$work/log" || { cat "$work/log"; fail "CMake did not look at the version"; }

"$here/use_installed.sh"
