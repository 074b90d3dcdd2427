#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a program with its arguments, for CTest, where it sees no process but its own: a PixInsight of
# the user, of another test or of another build would disturb it. Says so if the machine doesn't
# allow that.
set -euo pipefail

for user in "" "--user --map-current-user"; do
    # shellcheck disable=SC2206 # these are words
    alone=(unshare $user --pid --fork --kill-child --mount-proc)
    if "${alone[@]}" true 2>/dev/null; then
        # The first process of all has to take leave of those that end, so it isn't the program.
        # shellcheck disable=SC2016 # is expanded by the inner shell
        exec "${alone[@]}" sh -c '"$@"; exit $?' sh "$@"
    fi
done
echo "Processes of this machine are seen: a PixInsight among them disturbs the tests."
exec "$@"
