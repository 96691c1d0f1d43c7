#!/bin/sh
# Compiles a driver information file into finished PPDs.
# Usage: compile.sh <ppdc> <file.drv> <folder> <PPD>...; the PPDs are those of the file, in the folder.
#
# ppdc says what is wrong in the file and then exits with 0: whatever it says is an error. A PPD left
# behind by a failed run would look up to date to the next one.
set -eu
ppdc=$1 drv=$2 folder=$3
shift 3
rm -f "$@"
languages=$(sed -n 's/^#po \([a-z_]*\) .*/\1/p' "$drv" | paste -sd , -)
said=$("$ppdc" -l "en,$languages" -d "$folder/raw" "$drv" 2>&1) || : "${said:=$ppdc failed}"
if [ -n "$said" ]; then
  echo "$said" >&2
  exit 1
fi
for ppd; do
  awk -f "$(dirname "$drv")/finish.awk" "$folder/raw/$(basename "$ppd")" >"$ppd.new"
  mv "$ppd.new" "$ppd"
done
