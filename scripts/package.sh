#!/bin/bash
# Builds the packages: a zip file for each Windows, a tar file and Debian packages for Linux, and for each
# a wheel for Python.
#
#   scripts/package.sh [PRESET...]      of release, windows32 and windows64; all without arguments
#
# They come to out/ (QV_OUT names another folder). They hold what the tests of the same preset test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
out=${QV_OUT:-$root/out}

[ $# -gt 0 ] || set -- release windows32 windows64
"$root/scripts/setup.sh" libgtest-dev dpkg-dev file python3-build python3-setuptools \
  python3-wheel
for preset; do
  case $preset in
    release) ;;
    windows32) "$root/scripts/setup.sh" g++-mingw-w64-i686-posix googletest clang lld llvm ;;
    windows64) "$root/scripts/setup.sh" g++-mingw-w64-x86-64-posix googletest clang lld llvm ;;
    *) sed -n '2,7s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  cpack --config "build/$preset/CPackConfig.cmake" -B "$out"
  # Debian's Python whatever else is on the path: it has the tools. They leave their work in the folder.
  python=build/$preset/bindings/python
  rm -rf "$python/build"
  /usr/bin/python3 -m build --wheel --no-isolation --outdir "$out" "$python"
done
rm -rf "$out/_CPack_Packages"
