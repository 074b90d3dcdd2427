#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Reports which test catches each planted fault.
#   scripts/plant-faults.sh [--own] BUILD_FOLDER FAULT.diff...
# Each diff plants one fault in src/. The tests of its folder run first, then all others until one
# fails, unless --own is given. For each fault a line shows the test that caught it, or SURVIVED.
# The working tree must be clean, and is clean again at the end.
set -euo pipefail
own=
if [[ $1 == --own ]]; then
    own=1
    shift
fi
build=$(realpath "$1")
shift
mapfile -t faults < <(realpath "$@")
cd "$(dirname "$0")/.."
git diff --quiet || { echo "Commit or stash your changes first." >&2; exit 1; }
trap 'git checkout --quiet -- src' EXIT

# firstFailure CTEST_OPTION...: builds the selected tests and prints the first one that fails.
firstFailure() {
    local selection=("$@") programs
    mapfile -t programs < <(ctest --test-dir "$build" -N "${selection[@]}" |
        sed -n 's|^ *Test *#.*/\(.*\)$|Test\1|p')
    [[ ${#programs[@]} -gt 0 ]] || return 0
    cmake --build "$build" --target "${programs[@]}" >"$build/fault.log" 2>&1 || {
        echo "DOES NOT BUILD"
        return 0
    }
    ctest --test-dir "$build" -j2 --stop-on-failure "${selection[@]}" >"$build/fault.log" 2>&1 &&
        return
    sed -n '/\*\*\*Skipped/d; s|^.*Test *#[0-9]*: *\([^ ]*\) .*\*\*\*.*$|\1|p' "$build/fault.log" |
        head -1 | grep . || echo "CTEST BROKE OFF"
}

for fault in "${faults[@]}"; do
    if ! git apply "$fault"; then
        printf '%-60s %s\n' "$(basename "$fault" .diff)" "DOES NOT APPLY"
        continue
    fi
    folder=$(sed -n 's|^+++ b/src/\(.*\)/[^/]*$|\1|p' "$fault" | head -1)
    catcher=$(firstFailure -R "^$folder/")
    if [[ -z $catcher && -z $own ]]; then
        catcher=$(firstFailure -E "^($folder|tools)/")
    fi
    printf '%-60s %s\n' "$(basename "$fault" .diff)" "${catcher:-SURVIVED}"
    git apply -R "$fault"
done
