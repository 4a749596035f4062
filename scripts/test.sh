#!/bin/bash
# Builds everything and runs the tests; installs what is missing first.
#
#   scripts/test.sh          every test, in a release build
#   scripts/test.sh --all    also: a million random calls of the kernels, images of 70000 x 70000
#                            pixels, a minute of each fuzzer, the sanitizers, the demo page in a
#                            browser, 32-bit and ARM Linux, the DLLs of Windows, the packages,
#                            planted faults: an hour or two
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
all=0
case "${1-}" in
  '') ;;
  --all) all=1 ;;
  *) sed -n '2,8s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

step() { printf '\n== %s\n' "$*"; }

"$root/scripts/setup.sh" libgtest-dev qemu-user libomp5-14 python3-numpy \
  python3-pytest python3-hypothesis
[ $all = 0 ] || "$root/scripts/setup.sh" chromium python3-distributed python3-fsspec python3-tqdm

step 'Release build and tests'
cmake --preset release >/dev/null
cmake --build --preset release
ctest --test-dir build/release --output-on-failure -j "$(nproc)"

/usr/bin/python3 -c 'import distributed, fsspec' 2>/dev/null ||
  echo 'SKIPPED: qvacceleratedlib.batch on a cluster, without python3-distributed and python3-fsspec'

[ $all = 1 ] || exit 0

# An hour of tests: what fails does not keep the rest from running, and is named at the end.
failed=()
part() {  # TITLE COMMAND...
  step "$1"
  "${@:2}" || { failed+=("$1"); echo "FAILED: $1"; }
}

kernelcheck() {
  local kernels
  kernels=$(build/release/tests/kernelcheck --list | tail -n +2 | wc -l)
  build/release/tests/kernelcheck --calls $((1000000 / kernels + 1))
}
large_images() {
  build/release/tests/unittests --gtest_also_run_disabled_tests \
    --gtest_filter='LargeImages.*BothSides'
}
sanitizers() {
  cmake --preset debug >/dev/null && cmake --build --preset debug &&
    ctest --test-dir build/debug --output-on-failure -j "$(nproc)"
}
packages() {
  scripts/package.sh || return
  local presets=(release windows64 windows32)
  scripts/setup_wine.sh 64 || return
  if ! scripts/setup_wine.sh 32; then
    echo 'SKIPPED: the package for 32-bit Windows, whose Wine this machine cannot have'
    presets=(release windows64)
  fi
  local status=0
  tests/check_packages.sh out "${presets[@]}" || status=1
  scripts/setup_wine.sh --stop
  return $status
}

part 'A million random calls of the kernels, at every level' kernelcheck
part 'Images of 70000 x 70000 pixels' large_images
part 'A minute of each fuzzer' scripts/fuzz.sh 60
part 'Address and undefined-behaviour sanitizers' sanitizers
part 'Sixteen threads under the thread sanitizer' scripts/threadcheck.sh 60
part 'Memcheck' scripts/memcheck.sh
part 'Coverage' scripts/coverage.sh
part 'The demo page in a browser' tests/tool/check_page.sh build/release/tools/qvtool/qvtool \
  "$(command -v chromium)"
part 'Platforms' scripts/test_platforms.sh
part 'Packages' packages
part 'Planted faults' scripts/mutate.sh

[ ${#failed[@]} = 0 ] && echo 'All of it passed.' && exit 0
printf 'FAILED: %s\n' "${failed[@]}"
exit 1
