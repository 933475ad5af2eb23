#!/usr/bin/env bash
# Formats every source file. With --check, only reports the unformatted ones.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

# shellcheck source=tools/common.sh
source tools/common.sh

formatter=$(clang_tool clang-format) || exit 1
mode=(-i)
[ "${1:-}" = --check ] && mode=(--dry-run -Werror)
find . -type d \( -name 'build*' -o -name .git \) -prune -o \( -name '*.h' -o -name '*.cpp' \) -type f -print0 |
  xargs -0 -r -n 40 -P "$(nproc)" "$formatter" "${mode[@]}"
