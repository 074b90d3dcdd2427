#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs missing packages, builds the fuzzers and runs all of them, or those named: each on its
# stored inputs, then for some seconds (default: 30) on new ones. Several run side by side, a single
# one on all cores. New inputs, failures and logs go to build/fuzz/found.
#   scripts/fuzz.sh [SECONDS [NAME...]]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-30}
names=("${@:2}")
[[ ${#names[@]} -gt 0 ]] || mapfile -t names < <(ls fuzz/inputs)
scripts/setup.sh build fuzz
cmake --preset fuzz
cmake --build --preset fuzz

more=()
[[ ${#names[@]} -gt 1 ]] || more=(-fork="$(nproc)" -ignore_timeouts=0 -ignore_ooms=0)

fuzz() {
    local name=$1 seconds=$2 found=build/fuzz/found/$1
    mkdir -p "$found"
    if ! "build/fuzz/fuzz/fuzz-$name" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -dict="fuzz/$name.dict" -artifact_prefix="build/fuzz/found/$name-" -print_final_stats=1 \
        "${@:3}" "$found" "fuzz/inputs/$name" >"$found.log" 2>&1; then
        tail -n 40 "$found.log"
        echo "fuzz-$name failed; see $found.log"
        return 1
    fi
    echo "fuzz-$name: $(grep -a 'cov: ' "$found.log" | tail -n 1)"
}
export -f fuzz
printf '%s\n' "${names[@]}" |
    xargs -P "$(nproc)" -I '{}' bash -c 'fuzz "$@"' fuzz '{}' "$seconds" "${more[@]}"
