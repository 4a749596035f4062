#!/bin/bash
# The shared library exports the operations and the copy assignment of its class, and nothing else.
set -u
library=$1
defined=$(nm -D --defined-only -C "$library" | awk '$2 != "A"' | cut -d' ' -f2-)
members='qv[A-Za-z0-9]+\(CqvAccLib::qvDataType.*\)|operator=\(CqvAccLib const&\)'
foreign=$(grep -vE "^[TW] CqvAccLib::($members)\$" <<<"$defined")
if [ -n "$foreign" ]; then
  printf 'exports that are no operations:\n%s\n' "$foreign"
  exit 1
fi
grep -q 'CqvAccLib::operator=' <<<"$defined" ||
  { echo 'the copy assignment is not exported'; exit 1; }
# What it needs: the C and C++ runtimes.
needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(libc|libm|libpthread|libstdc\+\+|libgcc_s|ld-linux.*)\.so')
[ -z "$needed" ] || { printf 'unexpected libraries: %s\n' "$needed"; exit 1; }
# Its threads are its own, whatever runtime is at hand.
openmp=$(nm -D --undefined-only "$library" | grep -E ' (GOMP_|omp_|__kmpc_)')
[ -z "$openmp" ] || { printf 'symbols of OpenMP: %s\n' "$openmp"; exit 1; }
echo "$(grep -c . <<<"$defined") exports"
