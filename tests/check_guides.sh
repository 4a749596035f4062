#!/bin/bash
# The guides are true. CONTRIBUTING.md lists the files that an operation, a level, a layout and a
# binding take: they are there, each knows the guide's example, and no other source tells levels
# apart. docs/design.md says which room may include which.
set -eu
cd "$(dirname "$0")/.."
guide=CONTRIBUTING.md design=docs/design.md
status=0
complain() { echo "$*"; status=1; }

# The files of a section's table, its patterns filled in for an example.
files() {  # HEADING SED-SCRIPT
  sed -n "/^## $1\$/,/^## /s/^| \`\([^\`]*\)\`.*/\1/p" $guide | sed "$2"
}
check() {  # HEADING SED-SCRIPT WORDS
  local file count=0
  while read -r file; do
    count=$((count + 1))
    if [ ! -f "$file" ]; then
      complain "$guide: $1: there is no $file"
    elif ! grep -qiE "$3" "$file"; then
      complain "$guide: $1: $file does not know $3"
    fi
  done < <(files "$1" "$2")
  [ "$count" -ge 7 ] || complain "$guide: $1: only $count files"
}
mirror='s/<family>/copy/; s/<Family>Bench/TransferBench/; s/<Family>/Copy/; s/<Name>/Mirror/'
check 'An operation' "$mirror" mirror
check 'A level' 's/<level>/ssse3/' ssse3
check 'A layout' "$mirror" 'mirror|ThreeChannels'
check 'A binding' '' 'bindings/c|qvBindingsC|qvAcceleratedLibC|qv_mirror|Operations\.def'

levels='s/^  LEVEL(\([a-z0-9_]*\),.*/\1/p'
names=$(sed -n "$levels" dispatch/Levels.h | grep -vx generic | paste -sd '|')
while read -r file; do
  files 'A level' '' | grep -qxF "$file" ||
    complain "$file tells levels apart ($names), and $guide does not say so"
done < <(grep -rlwE "$names" bindings cmake dispatch kernels qvAcceleratedLib support tools \
  --include='*.h' --include='*.cpp' --include='*.def' --include='*.cmake' --include=CMakeLists.txt \
  --exclude-dir=level)

# What the guide's prose names. Build folders come and go.
while read -r file; do
  [ -e "$file" ] || complain "$guide: there is no $file"
done < <(grep -oE '`[A-Za-z0-9_./]+/[A-Za-z0-9_.]*`' $guide | tr -d '`' | grep -v '^build/')

# Rooms: the folders that a room's sources include, against the table.
rooms=$(sed -n 's/^| `\([a-z]*\|qvAcceleratedLib\)` |.*/\1/p' $design)
[ "$(wc -w <<<"$rooms")" -ge 8 ] || complain "$design: the table of rooms is gone"
for room in $rooms; do
  may=$(sed -n "s/^| \`$room\` |.*| \(.*\) |\$/\1/p" $design)
  [ "$may" != anything ] || continue
  while read -r included; do
    [[ $included = "$room" || $may = *"\`$included\`"* ]] ||
      complain "$design: $room includes $included"
  done < <(grep -rhoE '^#include "[A-Za-z]+/[^"]*' "$room" --include='*.h' --include='*.cpp' |
    sed 's/^#include "//; s,^qvAcceleratedLib/\(CqvAccLib\|qv\)\.h,include/,; s,/.*,,' | sort -u |
    grep -xE "$(paste -sd '|' <<<"$rooms")")
done
exit $status
