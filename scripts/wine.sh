#!/bin/sh
# Runs a Windows program: a 64-bit one in the Wine of this machine, a 32-bit one in the Wine of a
# small 32-bit Debian that lives in a folder of its own. scripts/setup_wine.sh makes both.
#
#   scripts/wine.sh 32|64 PROGRAM [ARGUMENT...]
#   scripts/wine.sh 32|64 --start|--stop      the server that all programs of this checkout share
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
bits=$1
shift
cache=${QV_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/qvAcceleratedLib}
# A server sees the folders of whoever started it: one server for each checkout.
WINEPREFIX=$cache/wine$bits-$(printf %s "$root" | cksum | cut -d' ' -f1)
# No crash dialogue, no browser engine, no managed code, no menus, no log of Wine's own.
WINEDEBUG=-all
WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe='
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY

# Wine's server and services keep what they inherit: they get no output of ours.
# shellcheck disable=SC2016
run='case $1 in
  --start) { wineserver -p; wine wineboot -i; } </dev/null >/dev/null 2>&1 || true ;;
  --stop) wineserver -k </dev/null >/dev/null 2>&1 || true ;;
  *) exec wine "$@" ;;
esac'

if [ "$bits" = 64 ]; then
  mkdir -p "$cache"
  exec sh -c "$run" sh "$@"
fi

# In a mount namespace of its own, so that nothing has to be unmounted.
debian=$cache/debian32
if [ ! -e "$debian/complete" ]; then
  [ "$1" != --stop ] || exit 0
  echo "wine.sh: there is no 32-bit Wine; scripts/setup_wine.sh makes it" >&2
  exit 1
fi
as_root=
[ "$(id -u)" = 0 ] || as_root="sudo -E"
# shellcheck disable=SC2016
exec $as_root unshare --mount sh -c '
  debian=$1 root=$2 folder=$3 run=$4
  shift 4
  mkdir -p "$debian$root"
  mount --rbind /proc "$debian/proc"
  mount --rbind /dev "$debian/dev"
  mount --bind "$root" "$debian$root"
  export WINEPREFIX=/root/$(basename "$WINEPREFIX") HOME=/root
  exec chroot "$debian" \
    sh -c "cd \"\$1\" && run=\$2 && shift 2 && exec sh -c \"\$run\" sh \"\$@\"" \
    sh "$folder" "$run" "$@"
' sh "$debian" "$root" "$PWD" "$run" "$@"
