#!/bin/sh
# Builds qvtool and runs its demo; installs what is missing first. The arguments go to the demo,
# such as --input PHOTO.jpg.
#
#   scripts/demo.sh [--input FILE]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build/demo

"$root/scripts/setup.sh"
if ! [ -f "$build/build.ninja" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQV_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" --target qvtool
"$build/tools/qvtool/qvtool" demo "$build/page" "$@"
echo "Open file://$build/page/index.html"
