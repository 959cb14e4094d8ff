#!/usr/bin/env bash
# Builds and runs all benchmarks; arguments go to each: bench.sh --benchmark_filter=swap
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release
cmake --build --preset release
for program in build/release/bin/bench_*; do
    echo "== $(basename "$program")"
    "$program" "$@"
done
