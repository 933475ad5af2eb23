#!/usr/bin/env bash
# tools/format.sh [--check]: formats every source file, or only reports those that aren't formatted.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  "") mode=(-i) ;;
  --check) mode=(--dry-run -Werror) ;;
  -h | --help) usage tools/format.sh && exit ;;
  *) refuse tools/format.sh "$*" ;;
esac
formatter=$(clang_tool clang-format) || exit 1
find . -type d \( -name 'build*' -o -name .git \) -prune -o \( -name '*.h' -o -name '*.cpp' \) -type f -print0 |
  xargs -0 -r -n 40 -P "$(nproc)" "$formatter" "${mode[@]}"
