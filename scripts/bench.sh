#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs every benchmark, and prints the tables of docs/performance.md.
#   scripts/bench.sh [FOLDER]    results go to FOLDER (build/bench/results)
# Takes about ten minutes, on a machine that does nothing else.
set -euo pipefail
cd "$(dirname "$0")/.."

folder=${1:-build/bench/results}
cmake --preset bench
cmake --build --preset bench
mkdir -p "$folder"

# run RESULT SUBJECT [OPTION...]: runs one program, on one processor unless PROCESSORS says
# otherwise; repetitions give the median.
run() {
    local start=$SECONDS
    taskset -c "${PROCESSORS:-1}" "build/bench/bench/Bench$2" \
        --benchmark_report_aggregates_only=true --benchmark_out_format=json \
        --benchmark_out="$folder/$1.json" "${@:3}" \
        >"$folder/$1.txt" 2>&1 || echo "Bench$2 failed: see $folder/$1.txt" >&2
    echo "$1: $((SECONDS - start)) s" >&2
}

export MALLOC_ARENA_MAX=1 # as the program sets it for itself
build/bench/bench/BenchStart >"$folder/Start.md"
build/bench/bench/BenchMemory >"$folder/Memory.md"
build/bench/bench/BenchActions >"$folder/Actions.md"
run Document Document --benchmark_repetitions=3 --benchmark_min_time=0.15 \
    --benchmark_min_warmup_time=1
# Memory is kept from one repetition to the next. On a virtual machine the first touch of a page can
# cost fifty times what it costs elsewhere, and would be all that is measured.
export MALLOC_MMAP_MAX_=0 MALLOC_TOP_PAD_=300000000
export MALLOC_TRIM_THRESHOLD_=4000000000
build/bench/bench/BenchActions 1000000 >"$folder/ActionsMany.md"
store=(Store --benchmark_repetitions=5 --benchmark_min_time=0.1 --benchmark_min_warmup_time=2)
PROCESSORS=0,1 run Store "${store[@]}"
run StoreOne "${store[@]}"
run Poll Poll --benchmark_repetitions=3 --benchmark_min_time=0.2
run Compare Compare --benchmark_repetitions=3 --benchmark_min_time=0.1
run Search Search --benchmark_repetitions=3 --benchmark_min_time=0.1
run Pages Pages --benchmark_repetitions=5 --benchmark_min_time=0.1
run Health Health --benchmark_min_time=0.1
run Tree Tree --benchmark_min_time=0.05
run Bulk Bulk --benchmark_repetitions=3 --benchmark_min_time=0.05
scripts/bench-tables.py "$folder" | tee "$folder/tables.md"
