#!/bin/bash
# Calls all operations from 16 threads at once under the thread sanitizer. Installs what is missing.
#
#   scripts/threadcheck.sh [SECONDS]    60 unless given
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
"$root/scripts/setup.sh" libgtest-dev clang
cmake --preset thread >/dev/null
cmake --build --preset thread --target unittests
QV_TEST_SECONDS=${1-60} \
  build/thread/tests/unittests --gtest_filter='Threads.*:RunBands.*'
