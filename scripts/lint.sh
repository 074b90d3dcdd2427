#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks C++ sources with clang-tidy 14 and clazy 1.11; fails on a finding. .clang-tidy lists the
# checks. Each source is compiled by itself, so an include that it lacks is found too.
#   scripts/lint.sh                 what this branch changes, or the last commit on main
#   scripts/lint.sh --all           everything: 20 minutes on two cores
#   scripts/lint.sh PATH...         folders and files
set -euo pipefail
cd "$(dirname "$0")/.."

folders=(src tools tests bench fuzz)

# Files that differ from the commit where the branch left main, or on main from the commit before.
changed_files() {
    local base
    base=$(git merge-base HEAD origin/main 2>/dev/null || git merge-base HEAD main)
    if [[ $base == "$(git rev-parse HEAD)" ]]; then
        base=HEAD~1
    fi
    git diff --name-only --diff-filter=d "$base" -- "${folders[@]}"
    git ls-files --others --exclude-standard -- "${folders[@]}"
}

# source_of FILE: the source itself; for a header its own source, or else the first one that
# includes it, directly or through another header. Nothing for other files.
source_of() {
    local includer
    case $1 in
    *.cpp) echo "$1" ;;
    *.h)
        if [[ -f ${1%.h}.cpp ]]; then
            echo "${1%.h}.cpp"
        else
            # Sources come first, those of benchmarks last.
            includer=$(git grep -lF -e "\"${1#*/}\"" -e "\"${1##*/}\"" -- '*.cpp' '*.h' |
                sort -t. -k2,2 -k1,1r | head -n 1) || true
            source_of "$includer"
        fi
        ;;
    esac
}

# compiled_from PATH: the sources there that are compiled on this system.
compiled_from() {
    sed -n "s|^ *\"file\": \"$PWD/\(${1%/}\(/.*\)\?\)\",\?$|\1|p" \
        build/{dev,bench,fuzz}/compile_commands.json 2>/dev/null || true
}

lint() {
    local build=dev clazy=level1
    case $1 in
    # Each benchmark is registered by a global, a test program makes its constants in one file, and
    # nobody minds a copy in it.
    bench/*) build=bench clazy+=,no-non-pod-global-static ;;
    fuzz/*) build=fuzz ;;
    tests/*) clazy+=,no-non-pod-global-static,no-detaching-temporary,no-range-loop-detach ;;
    esac
    clang-tidy --quiet -p "build/$build" "$1" 2> >(grep -v ' warnings\? generated' >&2)
    clazy-standalone -p "build/$build" --checks="$clazy" --extra-arg=-Werror \
        --extra-arg=-Wno-gnu-zero-variadic-macro-arguments \
        --header-filter="^$PWD/(src|tools|tests|bench|fuzz)/" "$1"
}
export -f lint

wanted=("$@")
if [[ ${1:-} == --all ]]; then
    wanted=("${folders[@]}")
elif [[ $# -eq 0 ]]; then
    changed=$(changed_files)
    mapfile -t wanted < <(while read -r file; do source_of "$file"; done <<<"$changed" | sort -u)
fi
if [[ ${#wanted[@]} -eq 0 ]]; then
    echo "No C++ file has changed."
    exit
fi

cmake --preset dev
for preset in bench fuzz; do
    if [[ " ${wanted[*]}" == *" $preset"* ]]; then
        cmake --preset "$preset"
    fi
done

sources=()
for path in "${wanted[@]}"; do
    mapfile -t found < <(compiled_from "$path")
    if [[ ${#found[@]} -eq 0 && $# -gt 0 ]]; then
        echo "Nothing is compiled from $path." >&2
        exit 2
    fi
    sources+=("${found[@]}")
done
# What sources include that a tool writes.
written=(kse_revision kse_ui_autogen)
for source in "${sources[@]}"; do
    if [[ $source == tests/*/Test*.cpp ]]; then
        written+=("$(basename "$source" .cpp)_autogen")
    fi
done
cmake --build --preset dev --target "${written[@]}"
printf '%s\n' "${sources[@]}" | sort -u |
    xargs --no-run-if-empty -P "$(nproc)" -I{} bash -euc 'lint {}'
