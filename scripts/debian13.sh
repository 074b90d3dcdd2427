#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the project and runs every test in Debian 13, which has a newer Qt (6.8). Needs root.
#   scripts/debian13.sh [ARGUMENT FOR CTEST...]
# The first run installs Debian 13 by scripts/in-debian.sh. Later runs reuse it, and what was built
# in it.
set -euo pipefail
cd "$(dirname "$0")/.."

inside() {
    scripts/in-debian.sh 13 "$@"
}

inside mkdir -p /kse
inside find /kse -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +
tar --exclude=./build --exclude=./.git -c . | inside tar -x -C /kse
inside /kse/scripts/setup.sh build test
# As in .ci/run: root ignores file modes, so tests of permissions would prove nothing.
inside chown -R nobody: /kse
inside runuser -u nobody -- env -i PATH=/usr/bin:/bin HOME=/kse LANG=C.UTF-8 \
    /kse/scripts/test.sh "$@"
