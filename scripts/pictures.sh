#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Draws the pictures in the README and in the user guide, from a scratch copy of the sample files.
# Needs convert (imagemagick).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/setup.sh" build
(cd "$root" && cmake --preset release && cmake --build --preset release)

home=$(mktemp -d "${TMPDIR:-/tmp}/kestrane-pictures.XXXXXX")
trap 'rm -rf "$home"' EXIT
settings=$home/.config/Pleiades
mkdir -p "$settings"
cp "$root"/examples/core-*-pxi.settings "$settings"
for stamp in 20260311-142530 20260309-210412 20260214-183355-before-restore; do
    cp "$root/examples/core-001-pxi.settings" "$settings/core-001-pxi.settings.bak-$stamp"
    touch -d "${stamp:0:8} ${stamp:9:2}:${stamp:11:2}:${stamp:13:2}" "$settings"/*"$stamp"
done
touch -d "2026-03-11 22:48:07" "$settings"/*.settings
env HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_CACHE_HOME="$home/.cache" \
    XDG_DATA_HOME="$home/.local/share" QT_QPA_PLATFORM=offscreen \
    "$root/build/release/src/app/kestrane-settings-editor" --theme light --screenshots "$home/drawn"

# Cut off the status bar, which shows the scratch folder.
mkdir -p "$root/docs/images"
for name in prefs-00 health; do
    convert "$home/drawn/$name.png" -crop 1200x795+0+0 +repage -dither None -colors 128 \
        "PNG8:$root/docs/images/$name.png"
done

# The guide contains its pictures, scaled down and cut off below the pages. The id of each is the
# name of its source.
guide=$root/resources/help/help.html
while IFS= read -r line; do
    if [[ $line =~ ^(.*\<img\ id=\"([a-z0-9-]+)\"\ src=\")[^\"]*(\".*)$ ]]; then
        convert "$home/drawn/${BASH_REMATCH[2]}.png" -crop 1200x678+0+0 +repage -resize '720x>' \
            -dither None -colors 64 "PNG8:$home/small.png"
        line="${BASH_REMATCH[1]}data:image/png;base64,$(base64 -w0 "$home/small.png")"
        line+=${BASH_REMATCH[3]}
    fi
    printf '%s\n' "$line"
done <"$guide" >"$home/help.html"
cp "$home/help.html" "$guide"
