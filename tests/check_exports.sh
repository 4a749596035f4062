#!/bin/bash
# The libraries export the operations of the roll and the copy assignment of the class, the functions
# of the C header, and nothing else.
#
#   check_exports.sh LIBRARY C_LIBRARY
set -u
cd "$(dirname "$0")/.."
defined() { nm -D --defined-only -C "$1" | awk '$2 != "A"' | cut -d' ' -f2- | sort; }
listed=$(sed -n 's/^QV_OPERATION(\([^,]*\),.*/\1/p' qvAcceleratedLib/Operations.def
         echo 'operator=')
name_alone='s/^[TW] CqvAccLib::\([A-Za-z0-9=]*\)(CqvAccLib.*/\1/'
diff <(sort <<<"$listed") <(defined "$1" | sed "$name_alone" | sort) ||
  { echo 'the exports (>) are not the roll of operations (<)'; exit 1; }
diff <(sed 's/^/T /' bindings/c/exports.txt | sort) <(defined "$2") ||
  { echo 'the exports (>) are not those of exports.txt (<)'; exit 1; }
python3 scripts/c_header.py --check || exit 1
for library; do
  # What it needs: the C and C++ runtimes.
  needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
    grep -vE '^(libc|libm|libpthread|libstdc\+\+|libgcc_s|ld-linux.*)\.so')
  [ -z "$needed" ] || { printf 'unexpected libraries: %s\n' "$needed"; exit 1; }
  # Its threads are its own, whatever runtime is at hand.
  openmp=$(nm -D --undefined-only "$library" | grep -E ' (GOMP_|omp_|__kmpc_)')
  [ -z "$openmp" ] || { printf 'symbols of OpenMP: %s\n' "$openmp"; exit 1; }
  echo "$library: $(defined "$library" | grep -c .) exports"
done
