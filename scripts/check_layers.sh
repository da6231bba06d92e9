#!/usr/bin/env bash
# Checks that the library's includes go one way.
#
#   check_layers.sh SRC LAYER...
#
# LAYER... are the folders of SRC from the bottom layer to the top one. A
# file in a layer may include headers of its own layer and of the layers
# before it; an include of a later layer or of a folder not in the list is
# reported with its place, and the exit status is 1.
set -euo pipefail

if [[ $# -lt 2 ]]; then
  echo "usage: $0 SRC LAYER..." >&2
  exit 2
fi
src=$1
shift

declare -A rank
position=0
for layer in "$@"; do
  rank[$layer]=$position
  position=$((position + 1))
done

status=0
for layer in "$@"; do
  [[ -d $src/$layer ]] || continue
  while IFS=: read -r file line included; do
    folder=${included%%/*}
    if [[ -z ${rank[$folder]+set} ]]; then
      echo "$file:$line: $layer includes \"$included\", which is in no layer"
      status=1
    elif ((rank[$folder] > rank[$layer])); then
      echo "$file:$line: $layer includes \"$included\" of $folder, a layer above it"
      status=1
    fi
  done < <(grep -Hno '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[^"/]*/[^"]*"' \
             "$src/$layer"/*.h "$src/$layer"/*.cpp 2>/dev/null |
           sed -E 's/:[[:space:]]*#[[:space:]]*include[[:space:]]*"([^"]*)"$/:\1/')
done
exit $status
