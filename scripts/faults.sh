#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes every system call of a save and of a restore fail, and prints the figures of
# docs/reliability.md. Takes about ten minutes.
#   scripts/faults.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build test
cmake --preset test
cmake --build --preset test --target TestSaveFaults
KSE_FAULTS=all cmake/run-alone.sh build/test/tests/TestSaveFaults
