#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs every benchmark, and prints the tables of docs/performance.md.
#   scripts/bench.sh [FOLDER]    results go to FOLDER (build/bench/results)
# Takes about six minutes, on a machine that does nothing else.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=${1:-build/bench/results}
cmake --preset bench
cmake --build --preset bench
mkdir -p "$folder"

# run RESULT SUBJECT [OPTION...]: runs one program on one processor; repetitions give the median.
run() {
    local start=$SECONDS
    taskset -c 1 "build/bench/bench/Bench$2" --benchmark_report_aggregates_only=true \
        --benchmark_out_format=json --benchmark_out="$folder/$1.json" "${@:3}" \
        >"$folder/$1.txt" 2>&1 || echo "Bench$2 failed: see $folder/$1.txt" >&2
    echo "$1: $((SECONDS - start)) s" >&2
}

build/bench/bench/BenchStart >"$folder/Start.md"
build/bench/bench/BenchMemory >"$folder/Memory.md"
build/bench/bench/BenchActions >"$folder/Actions.md"
run Document Document --benchmark_repetitions=3 --benchmark_min_time=0.15
run Store Store --benchmark_repetitions=3 --benchmark_min_time=0.1
TMPDIR=/dev/shm run StoreInMemory Store --benchmark_repetitions=3 --benchmark_min_time=0.1
run Poll Poll --benchmark_repetitions=3 --benchmark_min_time=0.2
run Compare Compare --benchmark_repetitions=3 --benchmark_min_time=0.1
run Search Search --benchmark_repetitions=3 --benchmark_min_time=0.1
run Pages Pages --benchmark_repetitions=5 --benchmark_min_time=0.1
run Health Health --benchmark_min_time=0.1
run Tree Tree --benchmark_min_time=0.05
run Bulk Bulk --benchmark_min_time=0.05
scripts/bench-tables.py "$folder" | tee "$folder/tables.md"
