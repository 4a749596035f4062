#!/bin/bash
# Fuzzes the argument space of all operations, with the address and undefined-behaviour sanitizers:
# every call at all levels and at two budgets, any difference is a fault.
#
#   scripts/fuzz.sh SECONDS [FAMILY...]            so many seconds for each family, from the corpus
#   scripts/fuzz.sh --keep SECONDS [FAMILY...]     then replaces the corpus by a minimal one that
#                                                  reaches as much; regression inputs stay
#   scripts/fuzz.sh --reproduce FAMILY HEX         describes one call and makes it
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
build=$root/build/fuzz corpus=$root/tests/fuzz/corpus
mode=run
case "${1-}" in
  --keep) mode=keep; shift ;;
  --reproduce) mode=reproduce; shift ;;
esac
[ $# -ge 1 ] || { sed -n '5,9s/^# \{0,1\}//p' "$0" >&2; exit 2; }

"$root/scripts/setup.sh" clang libclang-rt-14-dev libgtest-dev
sanitize='-fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow -fno-sanitize-recover=all'
CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=None -DQV_BUILD_FUZZERS=ON \
  -DQV_BUILD_TOOLS=OFF -DCMAKE_CXX_FLAGS="-O1 -g -fno-omit-frame-pointer $sanitize" >/dev/null
cmake --build "$build" --target tests/fuzz/all | grep -E 'error|FAILED' && exit 1
programs=$build/tests/fuzz
export ASAN_OPTIONS=allocator_may_return_null=1

if [ $mode = reproduce ]; then
  [ $# = 2 ] || { echo 'fuzz.sh: --reproduce FAMILY HEX' >&2; exit 2; }
  exec "$programs/fuzzreplay" --describe "$1" <(echo "$2")
fi

seconds=$1
shift
families=("$@")
[ $# -gt 0 ] || families=(checksum color composite copy deinterlace geometry resize \
  resample overlay fields matrices yuv)

# A corpus has an input a line in hexadecimal, libFuzzer wants files.
unpack() {  # DIRECTORY CORPUS
  local number=0 bytes rest
  while read -r bytes rest; do
    number=$((number + 1))
    case $bytes in '' | '#'*) continue ;; esac
    printf "$(sed 's/../\\x&/g' <<<"$bytes")" >"$1/0-$number"
  done <"$2"
}
pack() {  # FILE...
  local file
  for file in "$@"; do
    od -An -v -tx1 "$file" | tr -d ' \n'
    echo
  done
}

# One family: prints a line of figures, or the call that is at fault.
fuzz() {
  family=$1
  found=$build/found/$family log=$build/$family.log faults=$build/faults/$family
  rm -rf "$faults"
  mkdir -p "$found" "$faults"
  unpack "$found" "$corpus/$family.txt"
  # A band asks for its work memory before it looks at its arguments: gigabytes at times, of which
  # a refused call touches nothing. What is touched counts.
  if ! "$programs/fuzz_$family" -max_len=192 -max_total_time="$seconds" -timeout=20 \
      -rss_limit_mb=4000 -malloc_limit_mb=100000 -print_final_stats=1 \
      -artifact_prefix="$faults/" "$found" >"$log" 2>&1; then
    grep -E 'ERROR: [AL]|FAULT|runtime error|SUMMARY' "$log" | head -n 4
    for fault in "$faults"/*; do
      echo "$family: reproduce with"
      echo "  scripts/fuzz.sh --reproduce $family $(pack "$fault")"
    done
    return 1
  fi
  calls=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  reached=$(grep -oE 'cov: [0-9]+' "$log" | tail -n 1)
  printf '%-12s %8d inputs in %d s, %s edges, no fault\n' \
    "$family" "$calls" "$seconds" "${reached#cov: }"
}
export -f fuzz pack unpack
export build corpus programs seconds
status=0
printf '%s\n' "${families[@]}" |
  xargs -P "$(nproc)" -I {} bash -euo pipefail -c 'fuzz {}' || status=1
[ $mode = keep ] && [ $status = 0 ] || exit $status

for family in "${families[@]}"; do
  small=$build/small/$family
  rm -rf "$small"
  mkdir -p "$small"
  # Edges alone, not how often they were passed: a corpus that stays small.
  "$programs/fuzz_$family" -max_len=192 -use_counters=0 -set_cover_merge=1 "$small" \
    "$build/found/$family" >"$build/$family.merge.log" 2>&1
  file=$corpus/$family.txt
  { grep '#' "$file" || true; pack "$small"/* | sort -u; } >"$file.new"
  mv "$file.new" "$file"
  echo "$file: $(grep -c . "$file") inputs, $(stat -c %s "$file") bytes"
done
