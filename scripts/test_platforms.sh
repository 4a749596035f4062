#!/bin/bash
# Tests the 32-bit build of Linux, the one for ARM in QEMU, and the DLLs of Windows in Wine;
# installs what is missing first.
#
#   scripts/test_platforms.sh [PRESET...]     of linux32, linux-arm64, windows32, windows64; or all
#   scripts/test_platforms.sh --quick         the 32-bit DLL with its host programs alone
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
quick=0
case "${1-}" in
  '') set -- linux32 linux-arm64 windows32 windows64 ;;
  --quick) quick=1; set -- windows32 ;;
esac

step() { printf '\n== %s\n' "$*"; }

# Programs run in Wine need its server; not every machine lets a 32-bit one be made (code 3).
start_wine() {
  local code=0
  "$root/scripts/setup_wine.sh" "$1" || code=$?
  [ $code -eq 0 ] || [ $code -eq 3 ] || exit $code
  return $code
}

for_windows=(googletest clang lld llvm python3)
for preset; do
  tests=()
  case $preset in
    linux32)  # without g++-multilib, which cannot be installed beside a compiler for ARM
      "$root/scripts/setup.sh" googletest qemu-user
      "$root/scripts/setup.sh" "g++-$(g++ -dumpversion)-multilib" ;;
    linux-arm64) "$root/scripts/setup.sh" g++-aarch64-linux-gnu googletest qemu-user-static ;;
    windows32) "$root/scripts/setup.sh" g++-mingw-w64-i686-posix "${for_windows[@]}" ;;
    windows64) "$root/scripts/setup.sh" g++-mingw-w64-x86-64-posix "${for_windows[@]}" ;;
    *) sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
  step "$preset: build"
  cmake --preset "$preset" >/dev/null
  if [ $quick = 1 ]; then
    cmake --build --preset "$preset" --target loader visual qvselftest
    tests=(-R '^(visual_host|loader_.*|selftest|export.*)$')
  else
    cmake --build --preset "$preset"
  fi
  case $preset in
    windows*)
      trap '"$root/scripts/setup_wine.sh" --stop' EXIT
      if ! start_wine "${preset#windows}"; then
        step "$preset: SKIPPED what runs in Wine, which this machine cannot have; files alone"
        tests=(-R '^(export.*|level_symbols)$')
      fi ;;
  esac
  step "$preset: tests"
  ctest --test-dir "build/$preset" --output-on-failure -j "$(nproc)" "${tests[@]}"
done
