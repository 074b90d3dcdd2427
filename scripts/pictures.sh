#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Draws the picture of the README anew, from the first sample file.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$root/scripts/run.sh" --demo --theme light
mkdir -p "$root/docs/images"
cp "$root/build/screenshots/advanced.png" "$root/docs/images/advanced.png"
