#!/usr/bin/env bash
# tools/package.sh: builds the Debian packages kelvora and kelvora-server, with the page for browsers, into
#   build/package/packages.
# tools/package.sh windows: builds a zip and an installer for Windows into build/windows/packages.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  "" | windows) ;;
  -h | --help)
    usage tools/package.sh
    exit
    ;;
  *) refuse tools/package.sh "$*" ;;
esac

if [ "${1-}" = windows ]; then
  # shellcheck disable=SC2086
  install_packages $windows_packages
  say "Building the programs for Windows"
  configure windows
  cmake --build --preset windows --target kelvora kelvora-server kelvora-bots ||
    fail "The build failed; see above."
  version=$(sed -n 's/^project(kelvora VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  packages=build/windows/packages
  folder=$packages/Kelvora
  rm -rf "$packages"
  mkdir -p "$folder/assets" "$folder/sounds"
  cp build/windows/{kelvora,kelvora-server,"Play against bots"}.exe kelvora.jpg "$folder"
  cp LICENSE "$folder/LICENSE.txt"
  cp assets/*.png "$folder/assets"
  rm "$folder"/assets/icon-*.png
  cp sounds/*.wav sounds/*.mp3 "$folder/sounds"
  say "Packaging"
  (cd "$packages" && zip -qr9X "kelvora-$version-windows.zip" Kelvora) || fail "The zip could not be made; see above."
  makensis -V2 -NOCD -DVERSION="$version" -DFILES="$folder" -DICON=build/windows/kelvora.ico \
    -DOUTPUT="$packages/kelvora-$version-setup.exe" packaging/windows/kelvora.nsi ||
    fail "The installer could not be made; see above."
  ls -l "$packages"/*.zip "$packages"/*.exe
  exit
fi

# shellcheck disable=SC2086
install_packages $package_packages

use_commit_time
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
