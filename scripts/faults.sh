#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes every call of a save and of a restore go wrong: the figures of docs/reliability.md. Takes
# minutes.
#   scripts/faults.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build test
cmake --preset dev
cmake --build --preset dev --target TestSaveFaults
KSE_FAULTS=all cmake/run-alone.sh build/dev/tests/session/TestSaveFaults
