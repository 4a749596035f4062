#!/bin/bash
# Calls all operations from 16 threads at once under the thread sanitizer, and from inside parallel
# regions. Installs what is missing first.
#
#   scripts/threadcheck.sh [SECONDS]    60 unless given
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
# Clang's OpenMP runtime tells the sanitizer of its barriers (libarcher, in libomp-dev); without that
# every team would look like a race, which GCC's does.
"$root/scripts/setup.sh" libgtest-dev clang libomp-dev
cmake --preset thread >/dev/null
cmake --build --preset thread --target unittests
QV_TEST_SECONDS=${1-60} TSAN_OPTIONS="ignore_noninstrumented_modules=1 ${TSAN_OPTIONS-}" \
  build/thread/tests/unittests --gtest_filter='Threads.*:RunBands.*'
