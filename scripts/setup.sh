#!/bin/sh
# Installs what the build needs and is not there yet, from the Debian packages, and with it the
# packages given as arguments. Says nothing when nothing is missing.
#
#   scripts/setup.sh [PACKAGE...]
set -eu

missing=
for package in cmake ninja-build g++ libcli11-dev libpng-dev libjpeg-dev libtiff-dev \
  libwebp-dev "$@"; do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) || state=
  [ "$state" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if ! command -v apt-get >/dev/null; then
  echo "setup.sh: there is no apt-get here; please install the equivalents of:$missing" >&2
  exit 1
fi
as_root=
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup.sh: neither root nor sudo; please have these packages installed:$missing" >&2
    exit 1
  fi
  as_root="sudo"
fi

echo "Installing:$missing"
# Another apt-get may be at work, for instance unattended upgrades of a new machine.
apt="$as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086
if ! { $apt update && $apt install -y --no-install-recommends $missing; } >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
