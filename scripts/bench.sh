#!/bin/bash
# Builds the benchmarks beside every peer that Debian carries, runs them and writes
# docs/performance.md with its chart, docs/performance-avx2.md and docs/accuracy.md.
#
#   scripts/bench.sh [FILTER]      FILTER: a regular expression of job names; prints, writes nothing
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
"$root/scripts/setup.sh" libgtest-dev libbenchmark-dev pkg-config python3 libopencv-dev libyuv-dev \
  zlib1g-dev libdeflate-dev libisal-dev libzimg-dev libswscale-dev libpixman-1-dev libvips-dev
cmake --preset bench -DQV_BUILD_TOOLS=OFF >/dev/null
cmake --build --preset bench --target qvbench
run() {
  build/bench/bench/qvbench "$@" --benchmark_min_time=0.02 \
    --benchmark_enable_random_interleaving=true
}
if [ $# -gt 0 ]; then
  run --benchmark_repetitions=7 --benchmark_report_aggregates_only=true --benchmark_filter="$1"
  exit
fi
mkdir -p docs
# Several processes: where the pages of one happen to lie changes frames of the size of a core's own
# cache by a seventh.
processes() {  # COUNT NAME ARGUMENT...
  local count=$1 name=$2 process
  shift 2
  for process in $(seq "$count"); do
    run "$@" --benchmark_repetitions=3 --benchmark_out_format=json \
      --benchmark_out="build/bench/$name.$process.json" >/dev/null
  done
}
processes 6 all
# Once more beside as many busy loops as there are processors: what counts there is the mean.
build/bench/bench/qvbench --busy --benchmark_min_time=0.2 --benchmark_repetitions=2 \
  --benchmark_enable_random_interleaving=true \
  --benchmark_out=build/bench/busy.json --benchmark_out_format=json >/dev/null
# And at the level that most machines have, with peers told likewise.
OPENCV_CPU_DISABLE=AVX512F,AVX512-COMMON,AVX512-SKX,AVX512-CNL,AVX512-CLX,AVX512-ICL \
  processes 3 avx2 --level avx2
scripts/performance.py --results build/bench/all.?.json --busy build/bench/busy.json \
  --avx2 build/bench/avx2.?.json
build/bench/bench/qvbench --accuracy >docs/accuracy.md
echo 'Wrote docs/performance.md, docs/performance-avx2.md and docs/accuracy.md'
