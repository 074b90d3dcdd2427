#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the project and runs every test in Debian 13, whose Qt (6.8) is newer. Needs root.
#   scripts/debian13.sh [ARGUMENT FOR CTEST...]
# The first run installs that system in the folder debian13 in KSE_CACHE, which is
# ~/.cache/kestrane-settings-editor if not set; later ones use it again, and what was built there.
# DEBIAN_MIRROR names another source of packages than debootstrap's own.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ $EUID -ne 0 ]]; then
    echo "Run this as root: it makes a root folder and changes into it." >&2
    exit 1
fi
root=${KSE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kestrane-settings-editor}/debian13

# Runs a command in that root, with processes and mounts of its own, all of which end with it.
inside() {
    # shellcheck disable=SC2016 # is expanded by the inner shell
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$0/proc"
        mount --rbind /dev "$0/dev"
        exec chroot "$0" "$@"' "$root" "$@"
}

if [[ ! -d $root ]]; then
    scripts/setup.sh debian13
    rm -rf "$root.part" # of a run that was cut short
    mkdir -p "$root.part"
    debootstrap --variant=minbase trixie "$root.part" ${DEBIAN_MIRROR:+"$DEBIAN_MIRROR"}
    mv "$root.part" "$root"
fi
cp /etc/resolv.conf "$root/etc/resolv.conf"

mkdir -p "$root/kse"
find "$root/kse" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +
tar --exclude=./build --exclude=./.git -c . | tar -x -C "$root/kse"
inside /kse/scripts/setup.sh build test
# As in .ci/run: root ignores file modes, so that tests about permissions would prove nothing.
inside chown -R nobody: /kse
inside runuser -u nobody -- env -i PATH=/usr/bin:/bin HOME=/kse LANG=C.UTF-8 \
    /kse/scripts/test.sh "$@"
