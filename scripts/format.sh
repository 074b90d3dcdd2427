#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Formats all C++ files; with --check only tells which would change, and fails if any would.
# CLANG_FORMAT names another clang-format than the one found first. CI uses version 14.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
if [[ ${1:-} == --check ]]; then
    mode=(--dry-run --Werror)
fi
mapfile -t folders < <(find src tests tools bench fuzz -maxdepth 0 -type d 2>/dev/null)
find "${folders[@]}" \( -name '*.cpp' -o -name '*.h' \) \
    -exec "${CLANG_FORMAT:-clang-format}" "${mode[@]}" {} +
