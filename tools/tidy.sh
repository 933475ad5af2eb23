#!/usr/bin/env bash
# tools/tidy.sh BUILD [JOBS]: runs clang-tidy over the sources of the game, with the compile commands in the folder BUILD.
# A file that was clean is skipped until it, a header or .clang-tidy changes.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
build=$1 jobs=${2:-$(nproc)}

# Each version finds other things, so one version decides.
tidy=$(command -v clang-tidy-14 || command -v clang-tidy)
if ! "$tidy" --version | grep -q 'version 14\.'; then
  echo "The checks are those of clang-tidy 14, which this machine does not have; leaving them out."
  exit 0
fi

stamps=build/tidy
mkdir -p "$stamps"
rooms=(app audio base core frontend network particles platform raster rendering server simulation store)
common=$({ cat .clang-tidy; find "${rooms[@]}" -name '*.h' -print0 | sort -z | xargs -0 cat; } | sha256sum)

tidy_one() {
  local file=$1 stamp=$stamps/${1//\//_} key output
  key=$(printf '%s' "$common" | cat - "$file" | sha256sum)
  [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$key" ] && return
  # The commands are g++'s, with a warning or two that clang does not know.
  if output=$("$tidy" --quiet -p "$build" --extra-arg=-Wno-unknown-warning-option "$file" 2>/dev/null); then
    printf '%s' "$key" >"$stamp"
  else
    printf '%s\n' "$output"
    return 1
  fi
}
export -f tidy_one
export tidy build stamps common
find "${rooms[@]}" -name '*.cpp' -print0 | xargs -0 -r -n 1 -P "$jobs" bash -c 'tidy_one "$1"' _
