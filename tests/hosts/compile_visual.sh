#!/bin/bash
# Compiles the host of Visual C++'s ABI: the self-test's calls and Host.cpp. No C or C++ library's
# headers are there, only the compiler's own; /link reads the objects' names from FOLDER/objects.
#
#   compile_visual.sh CLANG TARGET INCLUDE FOLDER
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
clang=$1 target=$2 include=$3 folder=$4
: >"$folder/objects"
for source in tests/hosts/Host tools/selftest/{Calls,PixelCalls,SampledCalls,Sha256}; do
  object=$folder/$(basename "$source").obj
  "$clang" "--target=$target" -std=c++20 -O2 -Wall -Wextra -Werror -ffreestanding -nostdlibinc \
    -fno-exceptions -I"$include" -I"$root" -c "$root/$source.cpp" -o "$object"
  echo "$object" >>"$folder/objects"
done
