#!/bin/sh
# compare.sh ONE OTHER [arguments]: runs both programs with the arguments; their output has to be the same.
one=$1 other=$2
shift 2
folder=$(mktemp -d) || exit 1
trap 'rm -r "$folder"' EXIT
"$one" "$@" >"$folder/one" || exit 1
"$(dirname "$0")/../../tools/node.sh" "$other" "$@" >"$folder/other" || exit 1
cat "$folder/one"
diff "$folder/one" "$folder/other"
