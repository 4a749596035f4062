#!/bin/bash
# Builds everything and runs the tests; installs what is missing first.
#
#   scripts/test.sh          every test, in a release build
#   scripts/test.sh --all    also: a million random calls of the kernels, images of 70000 x 70000 pixels,
#                            a minute of each fuzzer, the sanitizers, the demo page in a browser,
#                            32-bit Linux, the DLLs of Windows, the packages
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
all=0
case "${1-}" in
  '') ;;
  --all) all=1 ;;
  *) sed -n '2,7s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

step() { printf '\n== %s\n' "$*"; }

"$root/scripts/setup.sh" libgtest-dev qemu-user
[ $all = 0 ] || "$root/scripts/setup.sh" chromium

step 'Release build and tests'
cmake --preset release >/dev/null
cmake --build --preset release
ctest --test-dir build/release --output-on-failure -j "$(nproc)"

[ $all = 1 ] || exit 0

step 'A million random calls of the kernels, at every level'
kernels=$(build/release/tests/kernelcheck --list | tail -n +2 | wc -l)
build/release/tests/kernelcheck --calls $((1000000 / kernels + 1))

step 'Images of 70000 x 70000 pixels'
build/release/tests/unittests --gtest_also_run_disabled_tests --gtest_filter='LargeImages.*BothSides'

step 'A minute of each fuzzer'
scripts/fuzz.sh 60

step 'Address and undefined-behaviour sanitizers'
cmake --preset debug >/dev/null
cmake --build --preset debug
ctest --test-dir build/debug --output-on-failure -j "$(nproc)"

step 'Sixteen threads under the thread sanitizer'
scripts/threadcheck.sh 60

step 'Memcheck'
scripts/memcheck.sh

step 'Coverage'
scripts/coverage.sh

step 'Planted faults'
scripts/mutate.sh

step 'The demo page in a browser'
tests/tool/check_page.sh build/release/tools/qvtool/qvtool "$(command -v chromium)"

scripts/test_platforms.sh

step 'Packages'
scripts/package.sh
presets=(release windows64 windows32)
scripts/setup_wine.sh 64
if ! scripts/setup_wine.sh 32; then
  echo 'SKIPPED: the package for 32-bit Windows, whose Wine this machine cannot have'
  presets=(release windows64)
fi
tests/check_packages.sh out "${presets[@]}"
scripts/setup_wine.sh --stop
