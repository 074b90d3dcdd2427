#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# For CTest: runs a program with its arguments so that it sees only its own processes, because a
# PixInsight of the user, of another test or of another build would disturb it. If the machine
# doesn't allow that, it prints a warning and runs the program as usual.
set -euo pipefail

for user in "" "--user --map-current-user"; do
    # shellcheck disable=SC2206 # these are words
    alone=(unshare $user --pid --fork --kill-child --mount-proc)
    if "${alone[@]}" true 2>/dev/null; then
        # A shell is process 1, which must reap all orphans.
        # shellcheck disable=SC2016 # expanded by the inner shell
        exec "${alone[@]}" sh -c '"$@"; exit $?' sh "$@"
    fi
done
echo "The tests see all processes of this machine: a PixInsight among them would disturb them."
exec "$@"
