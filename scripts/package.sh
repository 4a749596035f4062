#!/bin/bash
# Builds the packages: a zip file for each Windows, a tar file and Debian packages for Linux.
#
#   scripts/package.sh [PRESET...]      of release, windows32 and windows64; all without arguments
#
# They come to out/ (QV_OUT names another folder). They hold what the tests of the same preset test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
out=${QV_OUT:-$root/out}

[ $# -gt 0 ] || set -- release windows32 windows64
"$root/scripts/setup.sh" libgtest-dev dpkg-dev file
for preset; do
  case $preset in
    release) ;;
    windows32) "$root/scripts/setup.sh" g++-mingw-w64-i686-posix googletest clang lld llvm ;;
    windows64) "$root/scripts/setup.sh" g++-mingw-w64-x86-64-posix googletest clang lld llvm ;;
    *) sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  cpack --config "build/$preset/CPackConfig.cmake" -B "$out"
done
rm -rf "$out/_CPack_Packages"
