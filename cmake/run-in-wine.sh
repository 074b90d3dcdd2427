#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a Windows program with its arguments under Wine, for CTest. The platform of Qt is that of
# KSE_WINE_PLATFORM, or offscreen.
set -euo pipefail

# Wine keeps variables of Qt to itself, unless they are named so.
export WINEQT_QPA_PLATFORM=${KSE_WINE_PLATFORM:-offscreen}
export WINEQT_QPA_FONTDIR='Z:\usr\share\fonts\truetype\dejavu' # offscreen has no others
export WINEQT_FORCE_STDERR_LOGGING=1

# Not into a pipe, which the server of Wine would hold open.
output=$(mktemp)
trap 'rm "$output"' EXIT
result=0
wine "$@" >"$output" 2>&1 </dev/null || result=$?
cat "$output"
exit "$result"
