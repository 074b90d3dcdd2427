#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Renders the program's icon in all its sizes, and the built-in ads at twice the size of their strip
# for sharp screens. Needs rsvg-convert (librsvg2-bin) and the font DejaVu Sans (fonts-dejavu-core).
set -euo pipefail

resources=$(dirname "$0")/../resources
icons=$resources/icons
for size in 16 24 32 48 64 128 256 512; do
    rsvg-convert --width $size --height $size --output "$icons/kset-$size.png" "$icons/kset.svg"
done
for ad in Vellumix Torvane Quorrel; do
    rsvg-convert --width 1064 --height 184 --output "$resources/ads/$ad.png" "$resources/ads/$ad.svg"
done
