#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the project and runs every test in Debian 13, which has a newer Qt (6.8). Needs root.
#   scripts/debian13.sh [ARGUMENT FOR CTEST...]
# The first run installs Debian 13 in the folder debian13 of KSE_CACHE (default:
# ~/.cache/kestrane-settings-editor). Later runs reuse it, and what was built in it.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ $EUID -ne 0 ]]; then
    echo "Run this as root: it installs a system in a folder and runs it there." >&2
    exit 1
fi
root=${KSE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kestrane-settings-editor}/debian13

# Runs a command in that system, with its own processes and mounts, which end with it.
inside() {
    # shellcheck disable=SC2016 # expanded by the inner shell
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$0/proc"
        mount --rbind /dev "$0/dev"
        exec chroot "$0" "$@"' "$root" "$@"
}

if [[ ! -d $root ]]; then
    scripts/setup.sh debian13
    rm -rf "$root.part" # of an interrupted run
    mkdir -p "$root.part"
    debootstrap --variant=minbase trixie "$root.part"
    mv "$root.part" "$root"
fi
cp /etc/resolv.conf "$root/etc/resolv.conf"

mkdir -p "$root/kse"
find "$root/kse" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +
tar --exclude=./build --exclude=./.git -c . | tar -x -C "$root/kse"
inside /kse/scripts/setup.sh build test
# As in .ci/run: root ignores file modes, so tests of permissions would prove nothing.
inside chown -R nobody: /kse
inside runuser -u nobody -- env -i PATH=/usr/bin:/bin HOME=/kse LANG=C.UTF-8 \
    /kse/scripts/test.sh "$@"
