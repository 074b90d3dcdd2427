#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs missing packages, builds the program and runs every test.
#   scripts/test.sh [ARGUMENT FOR CTEST...]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build test
cmake --preset test
cmake --build --preset test
ctest --preset test "$@"
