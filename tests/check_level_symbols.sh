#!/bin/bash
# Code of one level must never be merged with another's: a weak symbol outside the level's own
# namespace in an object of a level would let the linker keep whichever copy it meets first.
# usage: check_level_symbols.sh build-directory level...
set -u
build=$1
shift
# What 32-bit code reads its own address with, and the pointers that MinGW reaches other sources'
# data through, are the same at every level.
common='__x86\.get_pc_thunk\.|\.refptr\.'
status=0
objects=0
for level; do
  before=$objects
  while IFS= read -r object; do
    objects=$((objects + 1))
    bad=$(nm -C "$object" | grep -E '^[0-9a-f]* *[VWuvw] ' | grep -vE "qv::$level::|$common")
    global=$(nm -C --defined-only "$object" | grep -E ' [TDBR] ' | grep -vE " qv::$level::|$common")
    if [ -n "$bad$global" ]; then
      printf '%s:\n%s%s\n' "$object" "$bad" "$global"
      status=1
    fi
  done < <(find "$build" -path "*qvRows_$level.dir*" -name '*.o*' -type f)
  [ "$objects" -gt "$before" ] || { echo "no objects of level $level below $build"; status=1; }
done
[ "$objects" -gt 0 ] || { echo "no level named"; exit 1; }
echo "$objects objects"
exit $status
