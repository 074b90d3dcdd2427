#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a command in Debian 12 or 13, with its own processes and mounts, which end with it. Needs
# root.
#   scripts/in-debian.sh 12|13 COMMAND [ARGUMENT...]
# The first run installs that system, without any package that isn't essential, in the folder
# debian12 or debian13 of KSE_CACHE (default: ~/.cache/kestrane-settings-editor). Later runs reuse
# it with all changes.
set -euo pipefail

if [[ $EUID -ne 0 ]]; then
    echo "Run this as root: it installs a system in a folder and runs it there." >&2
    exit 1
fi
root=${KSE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kestrane-settings-editor}/debian$1
suites=([12]=bookworm [13]=trixie)

if [[ ! -d $root ]]; then
    "$(dirname "$0")/setup.sh" debian >&2
    rm -rf "$root.part" # of an interrupted run
    mkdir -p "$root.part"
    debootstrap --variant=minbase "${suites[$1]}" "$root.part" >&2
    mv "$root.part" "$root"
fi
cp /etc/resolv.conf "$root/etc/resolv.conf"

# shellcheck disable=SC2016 # expanded by the inner shell
exec unshare --mount --pid --fork --kill-child bash -c '
    mount -t proc proc "$0/proc"
    mount --rbind /dev "$0/dev"
    exec chroot "$0" "$@"' "$root" "${@:2}"
