#!/usr/bin/env bash
# Runs the commands of a guide: all blocks marked as sh, in their order, in an empty directory, as
# one script. The script ends at the first command that fails. A command with a ! in front must
# fail. With --board the blocks are those marked as sh armhf, which compile for the board.
# usage: run_guide.sh [--board] GUIDE DIRECTORY_OF_PROGRAMS...
set -euo pipefail

mark='sh'
if [[ $1 == --board ]]; then
  mark='sh armhf'
  shift
fi
guide=$1
shift
for directory in "$@"; do PATH=$directory:$PATH; done
export PATH

work=$(mktemp -d)
export TMPDIR=$work
cleanup() {
  local child
  for child in $(jobs -p); do kill "$child" 2>/dev/null || true; done
  wait || true
  rm -rf "$work"
}
trap cleanup EXIT

script=$work/commands
# shellcheck disable=SC2016 # the backticks are those of Markdown
sed -n '/^```'"$mark"'$/,/^```$/{/^```/!p}' "$guide" |
  sed -E 's/^! (.*)$/if \1; then exit 1; fi/' >"$script"
[[ -s $script ]] || { echo "run_guide: $guide holds no commands" >&2; exit 1; }
mkdir "$work/here"
cd "$work/here"
set -x
# shellcheck disable=SC1090 # the guide's commands are checked by being run
source "$script"
