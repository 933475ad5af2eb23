#!/bin/sh
# compare.sh ONE EMULATOR OTHER [arguments]: runs both programs with the arguments, the other in the emulator. Their
# output has to be the same.
one=$1 emulator=$2 other=$3
shift 3
folder=$(mktemp -d) || exit 1
trap 'rm -r "$folder"' EXIT
"$one" "$@" >"$folder/one" || exit 1
"$emulator" "$other" "$@" | tr -d '\r' >"$folder/other" || exit 1
cat "$folder/one"
diff "$folder/one" "$folder/other"
