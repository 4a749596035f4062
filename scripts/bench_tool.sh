#!/bin/bash
# Measures qvtool beside the programs that people use for the same work, all in memory, and writes
# docs/performance-tool.md with its chart.
#
#   scripts/bench_tool.sh [OPTION...]      of scripts/bench_tool.py: with any, prints, writes nothing
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh python3 ffmpeg libvips-tools time
cmake --preset release >/dev/null
cmake --build --preset release --target qvtool
results=build/release/tool.json
scripts/bench_tool.py "$@" build/release/tools/qvtool/qvtool $results
[ $# -gt 0 ] || scripts/performance_tool.py $results
