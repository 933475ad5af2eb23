#!/usr/bin/env bash
# tools/release.sh VERSION: gives the sources that version, as in 1.3.0. docs/releasing.md has the steps around it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/setup.sh
source tools/setup.sh

version=${1:-}
[[ $version =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "Usage: tools/release.sh VERSION, with three numbers as in 1.3.0"
now=$(sed -n 's/^project(kelvora VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
if [ "$version" = "$now" ] || [ "$(printf '%s\n' "$now" "$version" | sort -V | tail -n 1)" = "$now" ]; then
  fail "$version doesn't come after $now, which this is."
fi
changes=$(sed -n '/^## Unreleased$/,/^## [0-9]/p' CHANGELOG.md | grep -c '^- ') ||
  fail "CHANGELOG.md says nothing under its heading Unreleased."

sed -i "s/^project(kelvora VERSION $now /project(kelvora VERSION $version /" CMakeLists.txt
sed -i "s/^## Unreleased\$/## Unreleased\n\n## $version/" CHANGELOG.md
say "This is $version, with $changes changes for players and operators. Next: ./check"
