#!/usr/bin/env bash
# Installs Debian packages on this machine, uses them, purges them and looks for what they left.
# usage: install_test.sh PACKAGE_FILE... | --may-install; the latter only says whether that can be done here.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
packages=(rolu-tools libkavo-rolu-dev libkavo-rolu3)

say() { printf 'package: %s\n' "$*" >&2; }
die() { say "$*"; exit 1; }

as_root=()
if [[ $EUID -ne 0 ]]; then
  command -v sudo >/dev/null ||
    die "installing the packages to try them needs root, and there is no sudo; --no-install leaves this out"
  [[ -t 0 ]] || sudo -n true 2>/dev/null ||
    die "installing the packages to try them needs root; sudo asks for a password, and there is no terminal" \
      "to type it on; --no-install leaves this out"
  as_root=(sudo)
fi

known() { dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null | grep -v '^not-installed' || true; }

[[ -z $(known) ]] ||
  die "this machine has packages of these names already ($(known | xargs)); trying others would end with" \
    "purging yours. Purge them first, or leave this out with --no-install"
[[ $1 != --may-install ]] || exit 0

log=$(mktemp)
declare -A was_there=()
paths=()
while IFS= read -r path; do
  path=${path#.}
  path=${path%/}
  [[ -n $path ]] || continue
  paths+=("$path")
  if [[ -d $path && ! -L $path ]]; then was_there[$path]=yes; fi
  [[ ! -e $path || -n ${was_there[$path]-} ]] ||
    die "$path is there already, and no package of ours owns it; nothing was installed"
done < <(for file in "$@"; do dpkg-deb --fsys-tarfile "$file" | tar -t; done | sort -u)

purge() { "${as_root[@]}" dpkg --purge "${packages[@]}" >"$log" 2>&1 || { cat "$log" >&2; die "purging failed (see above)"; }; }
trap 'purge; rm -f "$log"' EXIT

say "installing $(basename -a "$@" | xargs)"
"${as_root[@]}" dpkg --install "$@" >"$log" 2>&1 || { cat "$log" >&2; die "installing failed (see above)"; }
tests/installed/use_installed.sh >"$log" 2>&1 || { cat "$log" >&2; die "the installed packages do not work (see above)"; }
grep -x 'car battery: .*' "$log" >&2
purge
trap 'rm -f "$log"' EXIT

[[ -z $(known) ]] || die "dpkg still knows $(known | xargs)"
left=()
for path in "${paths[@]}"; do
  if [[ -e $path || -L $path ]] && [[ -z ${was_there[$path]-} ]]; then left+=("$path"); fi
done
[[ ${#left[@]} -eq 0 ]] || die "purging left ${left[*]}"
! ldconfig -p | grep -q kavo_rolu || die "the dynamic linker still knows the library"
say "installed, used and purged; of ${#paths[@]} paths none is left that was not there before"
