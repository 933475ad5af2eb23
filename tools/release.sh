#!/usr/bin/env bash
# tools/release.sh VERSION: sets the version, such as 9.8.7. docs/releasing.md has the other steps.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  -h | --help) usage tools/release.sh && exit ;;
esac
[[ $* =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || refuse tools/release.sh "$*"
version=$1
now=$(sed -n 's/^project(kelvora VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
if [ "$version" = "$now" ] || [ "$(printf '%s\n' "$now" "$version" | sort -V | tail -n 1)" = "$now" ]; then
  fail "$version is not newer than the current version, $now."
fi
changes=$(sed -n '/^## Unreleased$/,/^## [0-9]/p' CHANGELOG.md | grep -c '^- ') ||
  fail "CHANGELOG.md lists no changes under Unreleased."

sed -i "s/^project(kelvora VERSION $now /project(kelvora VERSION $version /" CMakeLists.txt
sed -i "s/^## Unreleased\$/## Unreleased\n\n## $version/" CHANGELOG.md
say "Version $version has $changes changes. Next: ./check"
