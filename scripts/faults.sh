#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes every call of a save and of a restore go wrong, and kills both 500 times: the figures of
# docs/reliability.md. Takes minutes.
#   scripts/faults.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build test
cmake --preset dev
cmake --build --preset dev --target TestInjectedFaults TestSaveFaults
KSE_FAULTS=all build/dev/tests/session/TestInjectedFaults
KSE_KILLS=500 build/dev/tests/session/TestSaveFaults
