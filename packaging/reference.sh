#!/usr/bin/env bash
# Makes the reference of the interface as web pages and sees that no function is missing from it.
# usage: reference.sh DIRECTORY
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
directory=$1

mkdir -p "$directory"
{ cat docs/Doxyfile && printf 'OUTPUT_DIRECTORY = "%s"\n' "$directory"; } | doxygen - || {
  echo "reference: the header's comments do not fit what they describe (see above)" >&2
  exit 1
}
declared=$(grep -c '^KAVO_ROLU_API ' include/kavo_rolu.h)
described=$(cat "$directory"/xml/*.xml | awk '
  /<memberdef kind="function"/ { is_function = 1 }
  is_function && /<briefdescription>/ { getline; if (/<para>/) count++; is_function = 0 }
  END { print count + 0 }')
if [[ $declared -eq 0 || $declared -ne $described ]]; then
  echo "reference: the header declares $declared functions, the reference describes $described" >&2
  exit 1
fi
echo "reference: $described functions in $directory/html/kavo__rolu_8h.html"
