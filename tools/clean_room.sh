#!/usr/bin/env bash
# tools/clean_room.sh check|package: tests building or installing in a fresh, minimal Debian 12. Only root can.
#   check     clones the project into it and runs ./check there, as a user with sudo
#   package   builds the packages here, installs them there, fetches the page for browsers, starts server and client
#             with a login, upgrades them, removes them, and looks for leftovers
# The room is a folder, KELVORA_ROOM (/var/tmp/kelvora-room), recreated each time. The base system is cached next to it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  check | package) ;;
  -h | --help) usage tools/clean_room.sh && exit ;;
  *) refuse tools/clean_room.sh "$*" ;;
esac

room=${KELVORA_ROOM:-/var/tmp/kelvora-room}
user=player

[ "$(id -u)" -eq 0 ] || fail "Only root can create the room: sudo tools/clean_room.sh"
mirror=$(debian_mirror)
install_packages debootstrap

close_room() {
  for folder in dev/shm dev/pts dev proc; do umount -l "$room/$folder" 2>/dev/null || true; done
}
trap close_room EXIT

open_room() {
  if [ ! -f "$room.tar" ]; then
    say "Fetching Debian 12"
    rm -rf "$room.new"
    debootstrap --variant=minbase bookworm "$room.new" "$mirror" >/dev/null
    tar -C "$room.new" -cf "$room.tar" . && rm -rf "$room.new"
  fi
  close_room
  rm -rf --one-file-system "$room"
  mkdir -p "$room"
  tar -C "$room" -xf "$room.tar"
  cp /etc/resolv.conf "$room/etc/resolv.conf"
  printf '127.0.0.1 localhost %s\n' "$(uname -n)" >"$room/etc/hosts"
  printf '#!/bin/sh\nexit 101\n' >"$room/usr/sbin/policy-rc.d"  # starts no services in the room
  chmod 755 "$room/usr/sbin/policy-rc.d"
  mount -t proc proc "$room/proc"
  mount --rbind /dev "$room/dev" && mount --make-rslave "$room/dev"
}

# inside USER COMMAND...: runs a command in the room with a bare environment.
inside() {
  local who=$1
  shift
  chroot "$room" /usr/bin/env -i PATH=/usr/local/bin:/usr/bin:/bin:/usr/local/games:/usr/games:/usr/sbin:/sbin \
    DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 HOME="$([ "$who" = root ] && echo /root || echo "/home/$who")" \
    setpriv --reuid "$who" --regid "$who" --init-groups "$@"
}

check_clone() {
  open_room
  say "Creating a user with sudo, and a clone"
  inside root apt-get -q update >/dev/null
  inside root apt-get -q install -y --no-install-recommends sudo git ca-certificates >/dev/null 2>&1
  inside root useradd --create-home --shell /bin/bash "$user"
  echo "$user ALL=(ALL) NOPASSWD: ALL" >"$room/etc/sudoers.d/$user"
  git clone --quiet --bare . "$room/home/$user/kelvora.git"
  inside root chown -R "$user:" "/home/$user"
  inside "$user" bash -c 'cd ~ && git clone --quiet kelvora.git "a clone" && cd "a clone" && ./check'
}

# Runs in the room: logs in with nothing but the packages.
log_in_from_packages() {
  kelvora-server --port 2010 >/tmp/server.out 2>/tmp/server.err &
  server=$!
  for _ in $(seq 100); do grep -q '^listening on' /tmp/server.out && break; sleep 0.1; done
  for file in / /kelvora.wasm; do
    exec 3<>/dev/tcp/127.0.0.1/2010
    printf 'GET %s HTTP/1.0\r\n\r\n' "$file" >&3
    grep -aq '^ETag:' <&3 || { echo "The server does not deliver $file."; kill "$server"; return 1; }
  done
  Xvfb :77 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
  screen=$!
  export DISPLAY=:77 KELVORA_FRAME_MS=10 QT_LOGGING_RULES='*=false'
  for _ in $(seq 50); do xdotool getdisplaygeometry >/dev/null 2>&1 && break; sleep 0.1; done
  openbox >/dev/null 2>&1 &
  manager=$!
  # A window that opens while openbox is starting is never shown.
  until xdotool set_num_desktops 1 && [ "$(xdotool get_num_desktops)" = 1 ]; do sleep 0.1; done 2>/dev/null
  local command
  command=$(sed -n 's/^Exec=//p' /usr/share/applications/kelvora.desktop)
  $command &
  client=$!
  dialog=$(timeout 30 xdotool search --sync --onlyvisible --name '^Connect' | head -n 1)
  xdotool windowactivate --sync "$dialog" key --clearmodifiers ctrl+a type --delay 50 Newcomer
  xdotool key Return
  for _ in $(seq 100); do grep -q 'Newcomer joined' /tmp/server.err && break; sleep 0.1; done
  status=0
  grep 'Newcomer joined' /tmp/server.err || { status=1; cat /tmp/server.out /tmp/server.err; }
  kill "$client" "$manager" "$server" "$screen" 2>/dev/null || true
  wait 2>/dev/null
  return "$status"
}

check_packages() {
  # shellcheck disable=SC2086
  install_packages $package_packages
  as_owner tools/package.sh
  open_room
  cp build/package/packages/*.deb "$room/tmp/"
  say "Installing the packages in the room"
  inside root apt-get -q update >/dev/null
  inside root bash -c 'apt-get -q install -y --no-install-recommends /tmp/kelvora_*.deb /tmp/kelvora-server_*.deb >/tmp/apt.log 2>&1' ||
    { cat "$room/tmp/apt.log"; fail "The packages could not be installed."; }
  inside root ldd /usr/games/kelvora /usr/games/kelvora-server | grep 'not found' && fail "A library is missing."
  say "Installing a virtual display"
  inside root bash -c 'apt-get -q install -y --no-install-recommends xvfb xdotool openbox >/tmp/apt.log 2>&1'
  inside root useradd --create-home "$user"
  say "Starting a server and the client from its desktop entry, logging in"
  inside "$user" bash -c "$(declare -f log_in_from_packages); log_in_from_packages" || fail "The login failed."
  say "Upgrading, then removing the packages"
  inside root bash -c 'dpkg -i /tmp/kelvora_*.deb /tmp/kelvora-server_*.deb >/dev/null'
  inside root bash -c 'dpkg --purge kelvora kelvora-server >/dev/null 2>/tmp/purge.log; cat /tmp/purge.log'
  local left
  left=$(inside root bash -c 'find / -xdev -iname "*kelvora*" -not -path "/tmp/*" -not -path "/proc/*" -not -path "/home/*/.config/*"')
  [ -z "$left" ] || fail "Left behind: $left"
  say "No leftovers"
}

case $1 in
  check) check_clone ;;
  package) check_packages ;;
esac
