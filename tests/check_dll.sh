#!/bin/bash
# A DLL exports each operation under the names of both C++ ABIs, as listed, and nothing else; it
# imports from the system and its C runtime only; it has no thread-local storage of the compiler's.
#
#   check_dll.sh OBJDUMP DLL EXPORTS.def
set -eu
dump=$("$1" -p "$2")
exported=$(sed -n '/\[Ordinal\/Name Pointer\] Table/,$s/^\t\[ *[0-9]*\] \(.*\)$/\1/p' <<<"$dump" |
  LC_ALL=C sort)
listed=$(tr -d '\r' <"$3" | sed -n 's/^  "\([^"]*\)".*/\1/p' | LC_ALL=C sort)
diff <(echo "$listed") <(echo "$exported") ||
  { echo 'the export table (>) is not the list (<)'; exit 1; }
imported=$(sed -n 's/^.*DLL Name: //p' <<<"$dump" | tr '[:upper:]' '[:lower:]' | LC_ALL=C sort |
  paste -sd' ')
[ "$imported" = 'kernel32.dll msvcrt.dll' ] || { echo "imports from: $imported"; exit 1; }
grep -qx 'Entry 9 0* 0* Thread Storage Directory .*' <<<"$dump" ||
  { echo 'there is a directory of thread-local storage'; exit 1; }
echo "$(grep -c . <<<"$exported") exports"
