#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs missing packages, builds the program, and makes a Debian package in build/package.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build package
cmake --preset release
cmake --build --preset release
rm -rf build/package
cpack --config build/release/CPackConfig.cmake -G DEB -B build/package
rm -r build/package/_CPack_Packages
