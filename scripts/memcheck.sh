#!/bin/bash
# Runs the library under valgrind's memcheck: nothing undefined is used, nothing beyond its memory
# is touched, nothing is lost. Installs what is missing first.
#
#   scripts/memcheck.sh    all operations in four bands and random calls of all kernels
#
# At the plain level: valgrind knows no AVX-512, gives up on long AVX2 code, and takes what is
# multiplied by a weight of 0, as vectors do at the end of a row, for used.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
"$root/scripts/setup.sh" libgtest-dev valgrind
cmake --preset release >/dev/null
cmake --build --preset release --target operationdigests kernelcheck

tests=build/release/tests
# The team's threads live until the process ends: what they hold is not lost.
memcheck() {  # PROGRAM ARGUMENT...
  printf '%s %s\n' "${1##*/}" "${*:2}"
  valgrind -q --error-exitcode=9 --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=definite "$@" >"$log" || { tail "$log"; exit 1; }
}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
SECONDS=0
memcheck $tests/operationdigests generic
$tests/operationdigests | cmp - "$log"
memcheck $tests/kernelcheck --level generic --calls 300
echo "memcheck found nothing in $SECONDS s"
