#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Formats all C++ files. With --check it only reports those that would change, and fails if there
# are any. CLANG_FORMAT names the clang-format to use; CI uses version 14.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
if [[ ${1:-} == --check ]]; then
    mode=(--dry-run --Werror)
fi
mapfile -t folders < <(find src tests tools bench fuzz -maxdepth 0 -type d 2>/dev/null)
find "${folders[@]}" \( -name '*.cpp' -o -name '*.h' \) \
    -exec "${CLANG_FORMAT:-clang-format}" "${mode[@]}" {} +
