#!/bin/bash
# Plants small faults in a copy of the library, one at a time, and runs the tests on each: a fault
# that no test finds is printed as a survivor. Installs what is missing first.
#
#   scripts/mutate.sh              every fault of tests/mutation/faults.txt
#   scripts/mutate.sh PATTERN...   those whose file or description contains one of the patterns
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh" libgtest-dev python3
exec python3 "$root/tests/mutation/mutate.py" "$@"
