#!/bin/bash
# Runs the kernels and the self-test on an emulated processor.
#
#   check_processor.sh QEMU MODEL CHOSEN LEVEL KERNELCHECK SELFTEST
#
# CHOSEN is what start-up must choose there, LEVEL the highest that may then be reached.
set -euo pipefail
qemu=$1 model=$2 chosen=$3 level=$4 kernelcheck=$5 selftest=$6
run() { "$qemu" -cpu "$model" "$@" 2> >(grep -v 'TCG doesn.t support requested feature' >&2); }

# QEMU 7.2 takes register 4 as the index of a gather for none at all.
gathering='^(WarpRow|LookupPalette)'
kernels='*'
[ "$level" != avx2 ] || kernels=$("$kernelcheck" --list | tail -n +2 | grep -vE "$gathering")
while IFS= read -r kernel; do
  report=$(run "$kernelcheck" --kernel "$kernel" --calls 20) || { echo "$report"; exit 1; }
  grep -qx "chosen: $chosen" <<<"$report" || { echo "expected: $chosen"; echo "$report"; exit 1; }
  grep -qE "^levels:.* $level\$" <<<"$report" ||
    { echo "expected: $level"; echo "$report"; exit 1; }
done <<<"$kernels"
echo "$chosen; $(wc -l <<<"$kernels") runs of kernelcheck"
[ "$level" != avx2 ] || exit 0

run "$selftest" --once
