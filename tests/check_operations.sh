#!/bin/bash
# The header declares the operations of the roll, in its order, and the benchmarks time each; but
# for two that work on a few numbers, not on pixels.
set -eu
cd "$(dirname "$0")/.."
listed=$(sed -n 's/^QV_OPERATION(\([^,]*\),.*/\1/p' qvAcceleratedLib/Operations.def)
header=include/qvAcceleratedLib/CqvAccLib.h
declared=$(sed -n 's/^  static IppStatus \(qv[A-Za-z0-9]*\)(.*/\1/p' $header)
diff <(echo "$listed") <(echo "$declared") || { echo 'the header (>) is not the roll (<)'; exit 1; }
missing=0
for operation in $(grep -vxE 'qvGetPerspectiveTransform|qvGetRotateBound' <<<"$listed"); do
  grep -qE "Lib::$operation\>" bench/*Bench.cpp || { echo "no benchmark of $operation"; missing=1; }
done
exit $missing
