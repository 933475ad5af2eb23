# Shared by ./play and ./check: says what it does, installs what is missing, configures a build. Sourced by bash, with
# the folder of the project as the current one.

# What the game needs to be built and played, and what the checks need besides.
play_packages="g++ cmake ninja-build qt6-base-dev libgl1-mesa-dev libpng-dev libjpeg-dev libboost-dev
  libcurl4-openssl-dev libfontconfig-dev libsdl2-dev libsdl2-mixer-dev fonts-comic-neue fonts-liberation"
check_packages="$play_packages ccache libgtest-dev libbenchmark-dev clang-14 clang-format-14 clang-tidy-14 python3
  python3-numpy mpg123 xvfb xdotool openbox wmctrl x11-utils x11-xserver-utils imagemagick"

say() { printf '==> %s\n' "$*"; }
fail() {
  printf '%s\n' "" "$@" >&2
  exit 1
}

# clang_tool NAME: the command clang++, clang-format or clang-tidy in version 14. Each version finds other things and lays
# out a little differently, so one version decides, and without it nothing passes.
clang_tool() {
  local name
  for name in "$1-14" "$1"; do
    if command -v "$name" >/dev/null && "$name" --version | grep -q 'version 14\.'; then
      echo "$name"
      return
    fi
  done
  fail "$1 14 is needed and missing. Debian 12 and Ubuntu 24.04 have it; ./check installs it."
}

# missing_packages NAME...: those that dpkg does not have, one a line.
missing_packages() {
  local present name
  present=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null | sed -n 's/ installed$//p')
  for name in "$@"; do
    grep -qxF -- "$name" <<<"$present" || printf '%s\n' "$name"
  done
}

# install_packages NAME...: installs the missing ones; apt is left in peace when there are none.
install_packages() {
  local missing as_root=() apt
  if ! command -v dpkg-query >/dev/null; then
    say "This is neither Debian nor Ubuntu: going on with what is installed. There the packages are: $*"
    return
  fi
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    say "Packages have to be installed; sudo may ask for your password."
    if ! command -v sudo >/dev/null || ! sudo -v; then
      fail "These packages are missing, and installing them takes the rights of root:" "  ${missing[*]}" \
        "Have them installed (as root: apt-get install ${missing[*]}), then start again."
    fi
  fi
  say "Installing (this can take some minutes): ${missing[*]}"
  apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
  # The machine's list of packages may be missing or out of date: it is fetched when the first try fails.
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >/dev/null 2>&1 && return
  say "Fetching the list of packages, then installing"
  "${apt[@]}" update </dev/null || say "The list could not be fetched whole; trying all the same."
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null && return
  fail "apt-get could not install: ${missing[*]}" \
    "Its own words stand above. What helps most often: a connection to the network; waiting until another installation" \
    "has ended; on Ubuntu, switching 'universe' on (add-apt-repository universe). Debian 12, Ubuntu 24.04 and whatever" \
    "is newer have all of these packages. Then start again."
}

# configure PRESET [cmake arguments]: configures build/PRESET, with ccache where it is installed.
configure() {
  local preset=$1 cache=build/$1/CMakeCache.txt launcher=() version output
  shift
  version=$(cmake --version | sed -n '1s/[^0-9]*\([0-9]*\.[0-9]*\).*/\1/p')
  if [ "$(printf '%s\n' 3.25 "$version" | sort -V | head -n 1)" != 3.25 ]; then
    fail "cmake $version is too old: 3.25 is needed. Debian 12, Ubuntu 24.04 and whatever is newer have it."
  fi
  # A build folder that was copied along with the project still means the old place.
  if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
    say "build/$preset was made for another place: starting it anew"
    rm -rf "build/$preset"
  fi
  # A build keeps the launcher that it began with, as another one would compile everything again.
  if ! command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=)
  elif [ ! -f "$cache" ]; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  output=$(cmake --preset "$preset" "${launcher[@]}" "$@" 2>&1) || fail "$output" "cmake could not configure the $preset build."
}

# Clones in different places share what ccache keeps.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
