#!/bin/bash
# The header declares the operations of the roll, in its order, the DLLs export each, and the
# benchmarks time each; but for two that work on a few numbers, not on pixels. README shows each
# sub-command of qvtool.
set -eu
cd "$(dirname "$0")/.."
listed=$(sed -n 's/^QV_OPERATION(\([^,]*\),.*/\1/p' qvAcceleratedLib/Operations.def)
header=include/qvAcceleratedLib/CqvAccLib.h
declared=$(sed -n 's/^  static IppStatus \(qv[A-Za-z0-9]*\)(.*/\1/p' $header)
diff <(echo "$listed") <(echo "$declared") || { echo 'the header (>) is not the roll (<)'; exit 1; }
missing=0
for operation in $listed; do
  for list in qvAcceleratedLib/exports/*.def; do
    grep -q "?$operation@" "$list" ||
      { echo "$list lacks $operation: run scripts/exports.py"; missing=1; }
  done
done
for operation in $(grep -vxE 'qvGetPerspectiveTransform|qvGetRotateBound' <<<"$listed"); do
  grep -qE "Lib::$operation\>" bench/*Bench.cpp || { echo "no benchmark of $operation"; missing=1; }
done
commands=$(sed -n 's/^const Command command{"\([a-z]*\)".*/\1/p' tools/qvtool/commands/*.cpp)
for command in $commands; do
  grep -qE "qvtool $command\b" README.md || { echo "README.md does not show $command"; missing=1; }
done
exit $missing
