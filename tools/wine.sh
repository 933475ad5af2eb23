#!/bin/sh
# Runs a Windows program in Wine. The prefix is $WINEPREFIX, or build/windows/wine, which is created when it is missing.
# Its folder "fresh" is to be copied: a prefix with a registry and users of its own, which shares the system's files.
build=$(dirname "$0")/../build/windows
mkdir -p "$build"
build=$(cd "$build" && pwd)
export WINEPREFIX="${WINEPREFIX:-$build/wine}"
export WINEDEBUG="${WINEDEBUG:--all}"
# The prefix gets no menu entries, and neither .NET nor a browser. No program needs services, whose start takes most of
# the time that a program needs in a new prefix.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-winemenubuilder.exe,mscoree,mshtml,services.exe=}"
# At a random place, the heap of one process in several thousand covers an address that Wine needs. The program then
# ends without a word, or has no window if the process was one of Wine's own. Some containers forbid fixed places.
placed=
setarch -R true 2>/dev/null && placed="setarch -R"
if [ "$WINEPREFIX" = "$build/wine" ] && [ ! -d "$WINEPREFIX/fresh" ]; then
  # Programs that start together share one prefix. The first of them creates it.
  # shellcheck disable=SC2016
  flock "$build/wine.lock" sh -c '[ -d "$WINEPREFIX/fresh" ] || {
    $0 wine wineboot -i && wineserver -w && cd "$WINEPREFIX" && rm -rf part && mkdir -p part/drive_c &&
      cp -R ./*.reg .update-timestamp dosdevices part && ln -s "$WINEPREFIX"/drive_c/* part/drive_c &&
      rm part/drive_c/users && cp -R drive_c/users part/drive_c && mv part fresh
  }' "$placed" >&2
fi
# shellcheck disable=SC2086
exec $placed wine "$@"
