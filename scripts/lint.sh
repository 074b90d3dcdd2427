#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks all C++ sources, or those given, with clang-tidy 14 and clazy 1.11; fails on a finding.
# .clang-tidy lists the checks.
#   scripts/lint.sh [FOLDER OR SOURCE...]
set -euo pipefail
cd "$(dirname "$0")/.."

wanted=("$@")
if [[ $# -eq 0 ]]; then
    wanted=(src tools tests bench)
fi

# The sources include headers that the build makes; those of the benchmarks include none.
cmake --preset dev
cmake --build --preset dev
if [[ " ${wanted[*]}" == *" bench"* ]]; then
    cmake --preset bench
fi

lint() {
    local build=dev clazy=level1
    case $1 in
    # Each benchmark is registered by a global, a test program makes its constants in one file, and
    # nobody minds a copy in it.
    bench/*) build=bench clazy+=,no-non-pod-global-static ;;
    tests/*) clazy+=,no-non-pod-global-static,no-detaching-temporary,no-range-loop-detach ;;
    esac
    clang-tidy --quiet -p "build/$build" "$1" 2> >(grep -v ' warnings\? generated' >&2)
    clazy-standalone -p "build/$build" --checks="$clazy" --extra-arg=-Werror \
        --extra-arg=-Wno-gnu-zero-variadic-macro-arguments \
        --header-filter="^$PWD/(src|tools|tests|bench)/" "$1"
}
export -f lint

sources=()
for path in "${wanted[@]}"; do
    mapfile -t found < <(sed -n "s|^ *\"file\": \"$PWD/\(${path%/}\(/.*\)\?\)\",\?$|\1|p" \
        build/{dev,bench}/compile_commands.json 2>/dev/null | sort -u)
    if [[ ${#found[@]} -eq 0 ]]; then
        echo "Nothing is compiled from $path." >&2
        exit 2
    fi
    sources+=("${found[@]}")
done
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -I{} bash -euc 'lint {}'
