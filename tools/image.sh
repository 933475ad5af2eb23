#!/usr/bin/env bash
# tools/image.sh [--no-page]: makes an OCI image of the server, build/image/kelvora-server.tar, from Debian's packages.
#   Needs no registry and no container engine, but root. Then runs tests against the server in the unpacked image, on a
#   read-only root. The image has the page for browsers, which is that of KELVORA_SITE or is built, unless --no-page is
#   given.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  "" | --no-page) ;;
  -h | --help) usage tools/image.sh && exit ;;
  *) refuse tools/image.sh "$*" ;;
esac

user=65532  # as in the Containerfile
image=build/image
context=$image/context
unpacked=$image/unpacked

[ "$(id -u)" -eq 0 ] || fail "Only root can make the image: sudo tools/image.sh"
# shellcheck disable=SC2086
install_packages $server_packages ca-certificates dpkg-dev mmdebstrap buildah python3

as_owner mkdir -p build
page=${KELVORA_SITE-}
if [ "${1-}" = --no-page ]; then
  page=
elif [ -z "$page" ]; then
  say "Building the page for browsers"
  # shellcheck disable=SC2086
  install_packages $web_packages
  as_owner bash -c 'source tools/common.sh; build_page'
  page=$PWD/build/web/site
fi

use_commit_time
umask 022
say "Building the server"
configure package -B $image -DKELVORA_CLIENT=OFF "-DKELVORA_SITE=$page"
cmake --build $image
rm -rf $image/packages
(cd $image && cpack >cpack.log) || { cat $image/cpack.log; fail "Packaging failed; see above."; }
package=$(echo $image/packages/kelvora-server_*.deb)

say "Making the root file system"
mirror=$(debian_mirror)
libraries=$(dpkg-deb -f "$package" Depends | sed 's/([^)]*)//g; s/|[^,]*//g; s/ //g')
rm -rf "$context"
mkdir -p "$context"
# Unpacks the libraries without their scripts, and leaves out what only people and package managers read.
mmdebstrap --quiet --mode=root --variant=extract --include="$libraries" \
  --dpkgopt='path-exclude=/usr/share/*' --dpkgopt='path-include=/usr/share/doc/*/copyright' \
  bookworm "$context/root" "$mirror"
root=$context/root
dpkg-deb -x "$package" "$root"
rm -rf "$root"/var/lib/{apt,dpkg} "$root"/var/cache "$root"/usr/share/man "$root"/etc/kelvora-server "$root"/lib/systemd
mkdir -p "$root"/etc/ssl/certs "$root"/{dev,proc,sys,tmp}
cat /usr/share/ca-certificates/mozilla/*.crt >"$root/etc/ssl/certs/ca-certificates.crt"  # for lists with https
echo "kelvora:x:$user:$user:Kelvora:/:/usr/sbin/nologin" >"$root/etc/passwd"
echo "kelvora:x:$user:" >"$root/etc/group"
chmod 1777 "$root/tmp"

say "Making the image"
export BUILDAH_ISOLATION=chroot
buildah --storage-driver vfs --root "$PWD/$image/storage" --runroot "$PWD/$image/run" build --quiet \
  --timestamp "$SOURCE_DATE_EPOCH" --file packaging/container/Containerfile --tag kelvora-server "$context" >/dev/null
rm -f $image/kelvora-server.tar
buildah --storage-driver vfs --root "$PWD/$image/storage" --runroot "$PWD/$image/run" push --quiet \
  kelvora-server "oci-archive:$image/kelvora-server.tar:kelvora-server:latest"
rm -rf "$image/storage" "$image/run"

say "Unpacking it"
rm -rf "$unpacked"
/usr/bin/python3 tools/unpack_image.py $image/kelvora-server.tar "$unpacked"
cat >$image/image-server <<END
#!/bin/sh
# Runs the server in the unpacked image as a container would: as its user, on a read-only root.
exec unshare --mount --ipc --uts sh -c 'mount --bind "\$0" "\$0" && mount -o remount,bind,ro,nosuid,nodev "\$0" &&
  exec chroot --userspec=$user:$user "\$0" /usr/games/kelvora-server "\$@"' "$PWD/$unpacked" "\$@"
END
chmod 755 $image/image-server
say "Testing it"
(cd tests/server/clients && KELVORA_SERVER=$PWD/../../../$image/image-server \
  /usr/bin/python3 -B -m unittest test_image test_round test_drain test_agones) || fail "The server in the image fails."
size=$(stat -c %s $image/kelvora-server.tar)
say "$image/kelvora-server.tar: $((size / 1000000)) MB"
[ "$size" -lt 80000000 ] || fail "The image is larger than 80 MB."
