#!/bin/sh
# Runs a Windows program in Wine. The prefix is $WINEPREFIX, or build/windows/wine, which is created when it is missing.
build=$(dirname "$0")/../build/windows
mkdir -p "$build"
export WINEPREFIX="${WINEPREFIX:-$(cd "$build" && pwd)/wine}"
export WINEDEBUG="${WINEDEBUG:--all}"
# The prefix gets no menu entries, and neither .NET nor a browser.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-winemenubuilder.exe,mscoree,mshtml=}"
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  # Programs that start together share one prefix. The first of them creates it.
  # shellcheck disable=SC2016
  flock "$build/wine.lock" sh -c '[ -f "$WINEPREFIX/system.reg" ] || { wine wineboot -i && wineserver -w; }' >&2
fi
exec wine "$@"
