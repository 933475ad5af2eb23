#!/usr/bin/env bash
# tools/tidy.sh [JOBS] [windows]: runs clang-tidy on the game's sources, or on those that only Windows has, for which
# build/windows must be configured. Then compiles each of them by itself. Clean ones are skipped until a source, a header
# or .clang-tidy changes.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  -h | --help) usage tools/tidy.sh && exit ;;
esac
[[ $* =~ ^([1-9][0-9]*)?\ ?(windows)?$ ]] || refuse tools/tidy.sh "$*"
jobs=${BASH_REMATCH[1]:-$(nproc)} system=${BASH_REMATCH[2]:-linux}

tidy=$(clang_tool clang-tidy) || exit 1
clang=$(clang_tool clang++) || exit 1

# Most of the time goes to library headers, so the sources of a room are read as one and share them. For that, names
# in the unnamed namespaces of a room's sources must differ.
list_linux_sources() {
  folder=build/tidy checks=-bugprone-suspicious-include
  local output
  output=$(cmake --preset release -B "$folder" 2>&1) || { echo "$output"; exit 1; }
}

# Windows passes pointers as numbers. The headers are g++'s, but clang has intrinsics of its own.
list_windows_sources() {
  folder=build/tidy-windows checks=-bugprone-suspicious-include,-performance-no-int-to-ptr
  local flags room unity separator="["
  flags=$(sed -n 's|.*"command": "[^ ]* \(.*\) -o platform/win32/.*/unity_0_cxx.cxx.obj .*|\1|p' build/windows/compile_commands.json)
  [ -n "$flags" ] || { echo "build/windows is not configured"; exit 1; }
  flags+=$(x86_64-w64-mingw32-g++-posix -E -v -x c++ /dev/null 2>&1 |
    sed -n '/^#include </,/^End/{/posix\/include\(-fixed\)\?$/d; s/^ / -isystem /p}' | tr -d '\n')
  for room in platform/win32/ platform/sockets/windows server/system/win app/windows/; do
    unity=$PWD/$folder/${room%/*}.cpp
    mkdir -p "${unity%/*}"
    printf '#include "%s"\n' "$PWD/$room"*.cpp >"$unity"
    printf '%s{\n  "directory": "%s",\n  "command": "clang++ --target=x86_64-w64-mingw32 %s -c \\"%s\\"",\n  "file": "%s"\n}' \
      "$separator" "$PWD" "$flags" "$unity" "$unity"
    separator=,
  done >"$folder.json"
  echo "]" >>"$folder.json"
  mv "$folder.json" "$folder/compile_commands.json"
}

"list_${system}_sources"
headers() { find . \( -name 'build*' -o -name tests -o -name bench -o -name tools \) -prune -o -name '*.h' -print0 | sort -z; }
common=$({ cat .clang-tidy; headers | xargs -0 cat; } | sha256sum)

tidy_one() {
  local file=$1 stamp=$1.clean key output
  key=$({ printf '%s' "$common"; sed -n 's/^#include "\(.*\)"$/\1/p' "$file" | xargs -d '\n' cat; } | sha256sum)
  [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$key" ] && return
  # The preset makes clang's warnings errors, too. The commands are g++'s, with some warnings that clang doesn't know.
  # Sources in one file shadow each other's names. Reserved names are left to clang's warning.
  if output=$("$tidy" --quiet -p "$folder" --checks="$checks" \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wreserved-identifier \
    --extra-arg=-Wreserved-macro-identifier --extra-arg=-Wno-shadow "$file" 2>/dev/null); then
    printf '%s' "$key" >"$stamp"
  else
    printf '%s\n' "$output"
    return 1
  fi
}
export -f tidy_one
export tidy folder checks common
# shellcheck disable=SC2016
sed -n 's/^ *"file": "\(.*\)",\?$/\1/p' "$folder/compile_commands.json" |
  xargs -d '\n' -r -n 1 -P "$jobs" bash -c 'tidy_one "$1"' _ || exit 1
tools/compile_alone.py "$clang" "$folder" "$jobs"
