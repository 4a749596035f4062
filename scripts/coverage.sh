#!/bin/bash
# Line and branch coverage of the library by its tests: which lines no test reaches, and a summary.
# Installs what is missing first.
#
#   scripts/coverage.sh            every file
#   scripts/coverage.sh PATTERN    files whose path matches the regular expression
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
"$root/scripts/setup.sh" libgtest-dev gcovr
cmake --preset coverage >/dev/null
cmake --build --preset coverage --target unittests kernelcheck operationdigests qvselftest

cd build/coverage
find . -name '*.gcda' -delete
# Left out are tests that make the calls of others many times over.
repeated='Threads.MayCall*:FloatEnvironment.OfTheHost*:LargeImages.*:Selftest.*'
for test in "unittests --gtest_brief=1 --gtest_filter=-$repeated" kernelcheck operationdigests \
    ../tools/selftest/qvselftest; do
  # shellcheck disable=SC2086
  tests/$test >test.log 2>&1 || { tail test.log; exit 1; }
done
# A source that is built for five levels counts once: what one of them reaches is reached.
gcovr --root "$root" . --filter "$root/(kernels|dispatch|qvAcceleratedLib)/.*${1-}" \
  --exclude-throw-branches --exclude-unreachable-branches --print-summary
