#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Renders the program's icon in all its sizes. Needs rsvg-convert (librsvg2-bin).
set -euo pipefail

icons=$(dirname "$0")/../resources/icons
for size in 16 24 32 48 64 128 256 512; do
    rsvg-convert --width $size --height $size --output "$icons/kset-$size.png" "$icons/kset.svg"
done
