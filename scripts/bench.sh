#!/usr/bin/env bash
# Installs what we are compared with, builds and runs bench_peers, and prints a table of medians: both sides of each
# job in turns, on huge pages. Takes a minute when all is built. bench.sh --all runs all other benchmarks too; what follows
# goes to each: bench.sh --all --benchmark_filter=swap
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh libopencv-imgcodecs-dev libopencv-imgproc-dev libleptonica-dev pkg-config
cmake --preset release
cmake --build --preset release
export GLIBC_TUNABLES=glibc.malloc.hugetlb=1
results=$(mktemp)
trap 'rm -f "$results"' EXIT
build/release/bin/bench_peers --benchmark_repetitions=7 --benchmark_min_time=0.05 \
    --benchmark_enable_random_interleaving=true --benchmark_out="$results" >/dev/null
grep -m1 'model name' /proc/cpuinfo || true
bench/peers_table.py <"$results"
[ "${1:-}" = --all ] || exit 0
shift
for job in blit growth image_io kernels plot; do
    echo "== $job"
    "build/release/bin/bench_$job" "$@"
done
