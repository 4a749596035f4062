#!/bin/sh
# Runs a Windows program: a 64-bit one in the Wine of this machine, a 32-bit one in the Wine of a
# small 32-bit Debian that lives in a folder of its own. scripts/setup_wine.sh makes both.
#
#   scripts/wine.sh 32|64 PROGRAM [ARGUMENT...]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
bits=$1
shift
cache=${QV_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/qvAcceleratedLib}
# A server, once started, sees the folders of its first program: one server for each checkout.
WINEPREFIX=$cache/wine$bits-$(printf %s "$root" | cksum | cut -d' ' -f1)
# No crash dialogue, no browser engine, no managed code, no menus, no log of Wine's own.
WINEDEBUG=-all
WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe='
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY

if [ "$bits" = 64 ]; then
  mkdir -p "$cache"
  exec wine "$@"
fi

# In a mount namespace of its own, so that nothing has to be unmounted.
debian=$cache/debian32
as_root=
[ "$(id -u)" = 0 ] || as_root="sudo -E"
# shellcheck disable=SC2016
exec $as_root unshare --mount sh -c '
  debian=$1 root=$2 folder=$3
  shift 3
  mkdir -p "$debian$root"
  mount --rbind /proc "$debian/proc"
  mount --rbind /dev "$debian/dev"
  mount --bind "$root" "$debian$root"
  export WINEPREFIX=/root/$(basename "$WINEPREFIX") HOME=/root
  exec chroot "$debian" sh -c "cd \"\$1\" && shift && exec wine \"\$@\"" sh "$folder" "$@"
' sh "$debian" "$root" "$PWD" "$@"
