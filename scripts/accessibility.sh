#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Starts the built program on a scratch copy of the sample files, and checks from outside what a
# screen reader or voice control meets. Installs missing packages, but builds nothing.
# Status 2: the accessibility bus was too slow.
#   scripts/accessibility.sh [PRESET]    one that is built (test)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build accessibility
home=$(mktemp -d "${TMPDIR:-/tmp}/kestrane-accessibility.XXXXXX")
trap 'rm -rf "$home"' EXIT
mkdir -p "$home/.config/Pleiades" "$home/run"
chmod 700 "$home/run"
cp examples/core-*-pxi.settings "$home/.config/Pleiades"

# Not by xvfb-run, whose server could not be reached at times.
# shellcheck disable=SC2016 # expanded by the inner shell
session='mkfifo "$HOME/display"
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$HOME/display" &
    trap "kill $!" EXIT
    read -r number <"$HOME/display" && DISPLAY=:$number dbus-run-session -- "$@"'
# The system's Python, for which its packages are.
cmake/run-alone.sh env -u WAYLAND_DISPLAY HOME="$home" XDG_CONFIG_HOME="$home/.config" \
    XDG_CACHE_HOME="$home/.cache" XDG_DATA_HOME="$home/.local/share" XDG_RUNTIME_DIR="$home/run" \
    QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 \
    timeout --kill-after=10 300 bash -c "$session" bash /usr/bin/python3 -W ignore \
    scripts/accessibility.py "build/${1:-test}/src/app/kestrane-settings-editor" \
    "$home/.config/Pleiades" 2>"$home/log" ||
    { status=$?; cat "$home/log" >&2; exit "$status"; }
