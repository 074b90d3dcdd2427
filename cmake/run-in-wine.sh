#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# For CTest: runs a Windows program with its arguments under Wine. KSE_WINE_PLATFORM names Qt's
# platform (default: offscreen).
set -euo pipefail

# Wine passes variables of Qt on only under these names.
export WINEQT_QPA_PLATFORM=${KSE_WINE_PLATFORM:-offscreen}
export WINEQT_QPA_FONTDIR='Z:\usr\share\fonts\truetype\dejavu' # offscreen has no others
export WINEQT_FORCE_STDERR_LOGGING=1

# A file, because Wine's server would keep a pipe open.
output=$(mktemp)
trap 'rm "$output"' EXIT
result=0
wine "$@" >"$output" 2>&1 </dev/null || result=$?
cat "$output"
exit "$result"
