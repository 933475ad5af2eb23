#!/usr/bin/env bash
# Builds the Debian packages kelvora and kelvora-server into build/package/packages.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
# shellcheck source=tools/setup.sh
source tools/setup.sh

# shellcheck disable=SC2086
install_packages $play_packages dpkg-dev file

# The packages carry the time of the last commit, so that the build is reproducible.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH
umask 022
configure package
say "Building"
cmake --build --preset package || fail "The build failed; see above."
say "Packaging"
rm -rf build/package/packages
(cd build/package && cpack) || fail "Packaging failed; see above."
ls -l build/package/packages/*.deb
