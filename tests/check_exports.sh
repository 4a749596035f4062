#!/bin/bash
# The shared library exports the operations of the roll and the copy assignment of its class, and
# nothing else.
set -u
library=$1
root=$(cd "$(dirname "$0")/.." && pwd)
roll=$root/qvAcceleratedLib/Operations.def
defined=$(nm -D --defined-only -C "$library" | awk '$2 != "A"' | cut -d' ' -f2-)
listed=$(sed -n 's/^QV_OPERATION(\([^,]*\),.*/\1/p' "$roll"; echo 'operator=')
exported=$(sed 's/^[TW] CqvAccLib::\([A-Za-z0-9=]*\)(CqvAccLib.*/\1/' <<<"$defined")
diff <(sort <<<"$listed") <(sort <<<"$exported") ||
  { echo 'the exports (>) are not the roll of operations (<)'; exit 1; }
# What it needs: the C and C++ runtimes.
needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(libc|libm|libpthread|libstdc\+\+|libgcc_s|ld-linux.*)\.so')
[ -z "$needed" ] || { printf 'unexpected libraries: %s\n' "$needed"; exit 1; }
# Its threads are its own, whatever runtime is at hand.
openmp=$(nm -D --undefined-only "$library" | grep -E ' (GOMP_|omp_|__kmpc_)')
[ -z "$openmp" ] || { printf 'symbols of OpenMP: %s\n' "$openmp"; exit 1; }
echo "$(grep -c . <<<"$defined") exports"
