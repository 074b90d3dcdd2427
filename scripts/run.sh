#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs missing packages, builds the program and starts it.
#   scripts/run.sh [--demo] [ARGUMENT FOR THE PROGRAM...]
# With --demo it works on a scratch copy of the sample files, in its own home folder.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

demo=false
if [[ ${1:-} == --demo ]]; then
    demo=true
    shift
fi

"$root/scripts/setup.sh" build
(cd "$root" && cmake --preset release && cmake --build --preset release)
program=("$root/build/release/src/app/kestrane-settings-editor")

if $demo; then
    home=$(mktemp -d "${TMPDIR:-/tmp}/kestrane-demo.XXXXXX")
    settings=$home/.config/Pleiades
    mkdir -p "$settings"
    cp "$root"/examples/core-*-pxi.settings "$settings"
    echo "The sample files are in $settings, and so will be the backups."
    # The key of the X server is in the real home folder.
    program=(env HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_CACHE_HOME="$home/.cache"
        XDG_DATA_HOME="$home/.local/share" XAUTHORITY="${XAUTHORITY:-${HOME:-}/.Xauthority}"
        "${program[@]}")
fi

if [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-}${QT_QPA_PLATFORM:-} ]]; then
    exec "${program[@]}" "$@"
fi

export QT_QPA_PLATFORM=offscreen
case " $*" in
*" --screenshots"* | *" --help"* | *" --version"* | *" -h"* | *" -v"*)
    exec "${program[@]}" "$@" # These need no window.
    ;;
esac
pictures=$root/build/screenshots
echo "There is no display here: drawing pictures of the window instead."
rm -rf "$pictures"
"${program[@]}" --screenshots "$pictures" "$@"
names=(search search-font module-search unused-modules cleanup cleanup-queued health review backups
    about advanced-changed advanced)
if $demo; then
    names+=(prefs-00 compare compare-all) # these need two settings files
fi
for name in "${names[@]}"; do
    if [[ ! -s $pictures/$name.png ]]; then
        echo "The picture $pictures/$name.png was not written." >&2
        exit 1
    fi
done
echo "The pictures are in $pictures."
