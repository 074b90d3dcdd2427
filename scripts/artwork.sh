#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Renders the program's icon in all sizes and as one file for Windows, and the built-in ads at twice
# the size of their strip, for high-resolution screens. Needs rsvg-convert (librsvg2-bin), icotool
# (icoutils) and the font DejaVu Sans (fonts-dejavu-core).
set -euo pipefail

root=$(dirname "$0")/..
resources=$root/resources
icons=$resources/icons
for size in 16 24 32 48 64 128 256 512; do
    rsvg-convert --width $size --height $size --output "$icons/kset-$size.png" "$icons/kset.svg"
done
icotool --create --output "$root/packaging/windows/kestrane-settings-editor.ico" \
    "$icons"/kset-{16,24,32,48,64,128}.png --raw="$icons/kset-256.png"
for ad in Vellumix Torvane Quorrel; do
    rsvg-convert --width 1064 --height 184 --output "$resources/ads/$ad.png" "$resources/ads/$ad.svg"
done
