# Functions shared by ./play, ./check and the tools. Source it in bash with the project's folder as the current one.

# Packages for building and playing, and additional ones for the checks.
play_packages="g++ cmake ninja-build qt6-base-dev libgl1-mesa-dev libpng-dev libstb-dev libboost-dev
  libcurl4-openssl-dev libsqlite3-dev libfontconfig-dev libxcb1-dev zlib1g-dev libsdl2-dev libmpg123-dev
  fonts-comic-neue fonts-liberation"
window_test_packages="python3 xvfb xdotool openbox wmctrl x11-utils x11-xserver-utils pulseaudio pulseaudio-utils mpg123"
linux_check_packages="$play_packages ccache libgtest-dev libbenchmark-dev clang-14 libclang-rt-14-dev lld-14
  clang-format-14 clang-tidy-14 python3-numpy python3-websockets python3-yaml nginx libnginx-mod-stream caddy prometheus
  openssl curl wget $window_test_packages"

# Packages for the server alone, for the page for browsers, for the page's checks, and for tools/package.sh.
server_packages="g++ cmake ninja-build libboost-dev libcurl4-openssl-dev libsqlite3-dev zlib1g-dev"
web_packages="cmake ninja-build emscripten libstb-dev flac fonts-comic-neue fonts-liberation"
web_check_packages="$web_packages $play_packages ccache googletest chromium chromium-driver firefox-esr
  python3-websockets openssl nginx libnginx-mod-stream xvfb xdotool openbox x11-utils imagemagick"
package_packages="$play_packages $web_packages dpkg-dev file"

# Packages for the Windows build, its zip and installer, and its tests.
windows_packages="g++ cmake ninja-build ccache g++-mingw-w64-x86-64-posix wine wine64 googletest libstb-dev libboost-dev
  libz-mingw-w64-dev libpng-dev nsis zip $window_test_packages"
windows_check_packages="$windows_packages $play_packages clang-tidy-14"

say() { printf '==> %s\n' "$*"; }
fail() {
  printf '%s\n' "" "$@" >&2
  exit 1
}

# usage SCRIPT: prints the comment at the top of a script.
usage() { sed -n '2,/^[^#]/s/^# \?//p' "$1"; }

# refuse SCRIPT WORDS: fails because the script doesn't know these arguments.
refuse() { fail "$1 doesn't know \"$2\"." "$(usage "$1")"; }

# clang_tool NAME: prints the path of clang++, clang-format or clang-tidy in version 14. Versions differ in findings and
# layout, so exactly this one is required.
clang_tool() {
  local name
  for name in "$1-14" "$1"; do
    if command -v "$name" >/dev/null && "$name" --version | grep -q 'version 14\.'; then
      command -v "$name"
      return
    fi
  done
  fail "$1 14 is missing. Debian 12 and Ubuntu 24.04 have it, and ./check installs it."
}

# missing_packages NAME...: prints the packages that are not installed, one per line.
missing_packages() {
  local present name
  present=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null | sed -n 's/ installed$//p')
  for name in "$@"; do
    grep -qxF -- "$name" <<<"$present" || printf '%s\n' "$name"
  done
}

# install_packages NAME...: installs the missing packages. Does not call apt if there are none.
install_packages() {
  local missing as_root=() apt
  if ! command -v dpkg-query >/dev/null; then
    say "Not on Debian or Ubuntu: continuing with what is installed. The Debian packages would be: $*"
    return
  fi
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    say "Some packages must be installed. sudo may ask for your password."
    if ! command -v sudo >/dev/null || ! sudo -v; then
      fail "These packages are missing, and only root can install them:" "  ${missing[*]}" \
        "Install them (as root: apt-get install ${missing[*]}), then try again."
    fi
  fi
  say "Installing (this can take some minutes): ${missing[*]}"
  apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
  # The list of packages may be missing or outdated, so it is fetched if the first attempt fails.
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >/dev/null 2>&1 && return
  say "Fetching the list of packages, then installing"
  "${apt[@]}" update </dev/null || say "The list could not be fetched completely; trying anyway."
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null && return
  fail "apt-get could not install: ${missing[*]}" \
    "See above. Common remedies: connect to the network; wait for another installation to finish; on Ubuntu, enable" \
    "'universe' (add-apt-repository universe). Debian 12 has all of these packages, Ubuntu 24.04 all but Chromium and" \
    "Firefox, which only './check web' needs. Then try again, or install them alone:" \
    "  ${as_root[*]:+sudo }apt-get install ${missing[*]}"
}

# configure PRESET [cmake arguments]: configures build/PRESET, with ccache where it is installed.
configure() {
  local preset=$1 cache=build/$1/CMakeCache.txt launcher=() version output
  shift
  version=$(cmake --version | sed -n '1s/[^0-9]*\([0-9]*\.[0-9]*\).*/\1/p')
  if [ "$(printf '%s\n' 3.25 "$version" | sort -V | head -n 1)" != 3.25 ]; then
    fail "cmake $version is too old: 3.25 is needed. Debian 12, Ubuntu 24.04 and newer have it."
  fi
  # A build folder that was copied along with the project still refers to the old path.
  if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
    say "build/$preset was created for another path: recreating it"
    rm -rf "build/$preset"
  fi
  # With another compiler, CMake would drop the preset's values. The cache has the path as it was given.
  local compiler
  compiler=$(printf '%s\n' "$@" | sed -n 's/^-DCMAKE_CXX_COMPILER=//p')
  if [ -n "$compiler" ] && [ -f "$cache" ] && ! grep -q "^CMAKE_CXX_COMPILER:[A-Z]*=$compiler\$" "$cache"; then
    say "build/$preset was created by another compiler: recreating it"
    rm -rf "build/$preset"
  fi
  # A build keeps its compiler launcher, because changing it would recompile everything.
  if ! command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=)
  elif [ ! -f "$cache" ]; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  output=$(cmake --preset "$preset" "${launcher[@]}" "$@" 2>&1) ||
    fail "$output" "" "$(grep -A 3 '^CMake Error' <<<"$output" | head -n 6)" \
      "cmake could not configure the $preset build. Run it alone:" "  cmake --preset $preset ${*@Q}"
}

# can_install_quietly NAME...: true if the packages are there or can be installed without asking for a password.
can_install_quietly() {
  if ! command -v dpkg-query >/dev/null; then
    command -v emcc >/dev/null
    return
  fi
  [ -z "$(missing_packages "$@")" ] || [ "$(id -u)" -eq 0 ] || sudo -n true 2>/dev/null
}

# build_page [arguments of the build]: builds the page for browsers, build/web/site.
build_page() {
  # shellcheck disable=SC2086
  install_packages $web_packages
  configure web
  cmake --build --preset web --target kelvora_site "$@"
}

# as_owner COMMAND...: root runs the command as the owner of the project's folder, who must be able to write to build
# afterwards, and whose repository git reads.
as_owner() {
  local owner
  owner=$(stat -c %U .)
  if [ "$(id -u)" -ne 0 ] || [[ $owner =~ ^(root|UNKNOWN)$ ]]; then
    "$@"
  else
    runuser -u "$owner" -- "$@"
  fi
}

# use_commit_time: exports the last commit's time for packages and images, so that their builds are reproducible.
use_commit_time() {
  SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(as_owner git log -1 --format=%ct 2>/dev/null || date +%s)}
  export SOURCE_DATE_EPOCH
}

# debian_mirror: prints where Debian 12 comes from: KELVORA_MIRROR, or else this machine's own apt source.
debian_mirror() {
  local mirror=${KELVORA_MIRROR-}
  # shellcheck disable=SC2016
  [ -n "$mirror" ] || mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' \
    'Codename: bookworm' 'Component: main' | head -n 1)
  [ -n "$mirror" ] || fail "apt has no source for Debian 12. Run apt-get update, or set KELVORA_MIRROR."
  echo "$mirror"
}

# Clones in different folders share the cache, but not the files that combine sources. In depend mode, a compilation that
# is not in the cache needs no separate run of the preprocessor.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1
