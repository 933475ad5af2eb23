#!/usr/bin/env bash
# publish_site.sh FROM TO: makes the folder TO what FROM is, with a compressed copy NAME.gz of each file that it makes
# smaller. A server may be serving TO meanwhile: each file is replaced at once, index.html last, and files that FROM
# lacks go after that. Files that haven't changed keep their time, by which browsers know them.
set -euo pipefail
from=$(cd "$1" && pwd)
mkdir -p "$2"
to=$(cd "$2" && pwd)

# replace FILE: puts the standard input in the place of TO/FILE, unless it is the same.
replace() {
  local file=$to/$1 fresh
  mkdir -p "$(dirname "$file")"
  fresh=$(dirname "$file")/.$(basename "$file").new
  cat >"$fresh"
  if cmp -s "$fresh" "$file"; then rm "$fresh"; else mv -f "$fresh" "$file"; fi
}

cd "$from"
mapfile -t files < <(find . -type f ! -name '.*' ! -name '*.gz' ! -path ./index.html -printf '%P\n' | sort)
[ -f index.html ] && files+=(index.html)
wanted=()
for file in "${files[@]}"; do
  packed=$(mktemp)
  gzip -9nc "$file" >"$packed"
  if [ "$(stat -c %s "$packed")" -lt "$(stat -c %s "$file")" ]; then
    replace "$file.gz" <"$packed"
    wanted+=("$file.gz")
  fi
  rm "$packed"
  replace "$file" <"$file"
  wanted+=("$file")
done
cd "$to"
find . -type f -printf '%P\n' | sort | comm -23 - <(printf '%s\n' "${wanted[@]}" | sort) | tr '\n' '\0' | xargs -0r rm -f
find . -mindepth 1 -type d -empty -delete
