#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Lets a program draw its pictures from a scratch copy of the sample files, and fails unless all are
# there. The environment says where it draws: QT_QPA_PLATFORM, DISPLAY and so on.
#   scripts/check-pictures.sh PROGRAM FOLDER
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

scratch=$(mktemp -d "${TMPDIR:-/tmp}/kestrane-check.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
settings=$scratch/.config/Pleiades
mkdir -p "$settings"
cp "$root"/examples/core-*-pxi.settings "$settings"
rm -rf "$2"
env HOME="$scratch" XDG_CONFIG_HOME="$scratch/.config" XDG_CACHE_HOME="$scratch/.cache" \
    XDG_DATA_HOME="$scratch/.local/share" LANG=C.UTF-8 "$1" --theme light --screenshots "$2"
for name in prefs-00 search search-font module-search unused-modules cleanup cleanup-queued \
    compare compare-all health review backups about advanced-changed advanced; do
    if [[ ! -s $2/$name.png ]]; then
        echo "The picture $2/$name.png was not written." >&2
        exit 1
    fi
done
