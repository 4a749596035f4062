#!/bin/sh
# Makes the copies of Wine that scripts/wine.sh runs, and starts their servers, which stay until
# stopped: a server that a test starts would keep that test's output open.
#
#   scripts/setup_wine.sh [32] [64]     both without arguments; says nothing when all is there
#   scripts/setup_wine.sh --stop
#
# The 32-bit Wine lives in a small 32-bit Debian of its own in ~/.cache/qvAcceleratedLib (1.6 GB),
# so that this machine needs no second architecture. To enter it takes the right to change the root
# folder; exit code 3 says that this machine does not grant it, as inside many containers.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cache=${QV_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/qvAcceleratedLib}
as_root=
[ "$(id -u)" = 0 ] || as_root="sudo -E"

if [ "${1-}" = --stop ]; then
  for bits in 32 64; do "$root/scripts/wine.sh" $bits --stop 2>/dev/null || true; done
  exit 0
fi

make_debian32() {
  debian=$cache/debian32
  if ! $as_root unshare --mount sh -c 'mount --bind /usr /mnt && chroot / true' 2>/dev/null; then
    echo "setup_wine.sh: no right to mount and to change the root folder here: no 32-bit Wine" >&2
    exit 3
  fi
  [ ! -e "$debian/complete" ] || return 0
  "$root/scripts/setup.sh" debootstrap
  echo "Making a 32-bit Debian with Wine in $debian"
  mkdir -p "$cache"
  # What an earlier attempt left, unless something is still mounted there.
  $as_root rm -rf --one-file-system "$debian"
  log=$cache/debian32.log
  if ! $as_root debootstrap --arch=i386 --variant=minbase --include=wine,wine32 bookworm \
      "$debian" >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    exit 1
  fi
  $as_root touch "$debian/complete"
}

[ $# -gt 0 ] || set -- 32 64
for bits; do
  case $bits in
    32) make_debian32 ;;
    64) "$root/scripts/setup.sh" wine wine64 ;;
    *) sed -n '2,10s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
  "$root/scripts/wine.sh" "$bits" --start
done
