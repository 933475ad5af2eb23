#!/usr/bin/env bash
# Builds the Debian packages kelvora and kelvora-server, with the page for browsers, into build/package/packages.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
# shellcheck source=tools/setup.sh
source tools/setup.sh

# shellcheck disable=SC2086
install_packages $play_packages $web_packages dpkg-dev file

# The packages carry the time of the last commit, so that the build is reproducible.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH
umask 022
say "Building the page for browsers"
build_page || fail "The page could not be built; see above."
configure package "-DKELVORA_SITE=$PWD/build/web/site"
say "Building the programs"
cmake --build --preset package || fail "The build failed; see above."
say "Packaging"
rm -rf build/package/packages
(cd build/package && cpack) || fail "Packaging failed; see above."
ls -l build/package/packages/*.deb
