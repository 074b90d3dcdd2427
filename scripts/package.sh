#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs missing packages, builds the program, makes a Debian package in build/package, and fails
# if lintian objects to it or the program in it doesn't start.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build package
cmake --preset release
cmake --build --preset release
rm -rf build/package
cpack --config build/release/CPackConfig.cmake -G DEB -B build/package
rm -r build/package/_CPack_Packages
package=$(echo build/package/*.deb)

lintian --allow-root --pedantic --display-info --fail-on error,warning,info,pedantic "$package"

scratch=$(mktemp -d "${TMPDIR:-/tmp}/kestrane-package.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
dpkg-deb --extract "$package" "$scratch/root"
QT_QPA_PLATFORM=offscreen scripts/check-pictures.sh \
    "$scratch/root/usr/bin/kestrane-settings-editor" "$scratch/pictures"
echo "The package is $package."
