#!/usr/bin/env bash
# Searches for inputs that break what must hold: fuzz.sh SECONDS [TARGET...], for instance fuzz.sh 60 tiff jpeg
# Each target has that long; as many run at a time as there are processors. What is found stands in
# build/fuzz/findings; new inputs that reach further are kept in build/fuzz/corpus.
set -euo pipefail

seconds=${1:?"usage: fuzz.sh SECONDS [TARGET...]"}
shift
cd "$(dirname "$0")/.."
scripts/setup.sh clang
cmake --preset fuzz
targets=("$@")
[ $# -gt 0 ] || for source in fuzz/fuzz_*.cpp; do
    name=${source##*/fuzz_}
    targets+=("${name%.cpp}")
done
cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}"
mkdir -p build/fuzz/findings build/fuzz/logs

search() {
    local target=$1 corpus=build/fuzz/corpus/$1 seeds=()
    mkdir -p "$corpus"
    for folder in fuzz/corpus/*; do
        case $target:${folder##*/} in
            "$target:$target" | anyfile:bmp | anyfile:tiff | anyfile:jpeg) seeds+=("$folder") ;;
        esac
    done
    build/fuzz/bin/fuzz_"$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix="build/fuzz/findings/$target-" "$corpus" "${seeds[@]}" 2>"build/fuzz/logs/$target" || {
        tail -n 20 "build/fuzz/logs/$target" >&2
        return 1
    }
    awk -v target="$target" '
        / cov: / {for (i = 1; i < NF; ++i) if ($i == "cov:") edges = $(i + 1)}
        /number_of_executed_units/ {runs = $2}
        END {printf "%-12s %10d executions %6d edges, no finding\n", target, runs, edges}' "build/fuzz/logs/$target"
}
export -f search
export seconds
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'search {}'
