#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# On Debian 12: installs missing packages, builds the program, makes a Debian package in
# build/package, and fails if lintian objects to it or the program in it doesn't start. As root it
# installs and removes the package too, in a bare Debian 12: see scripts/in-debian.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

program=kestrane-settings-editor
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

inside() {
    scripts/in-debian.sh 12 env DEBIAN_FRONTEND=noninteractive "$@"
}

list_files() {
    inside find / -xdev ! -path '/tmp/*' ! -path '/var/cache/*' ! -path '/var/log/*' \
        ! -path '/var/lib/apt/*' | sort
}

# Fails if the program doesn't start once it is installed, or anything is left when it is removed.
check_installation() {
    inside rm -rf /kse
    inside mkdir /kse
    tar -c examples scripts "$package" | inside tar -x -C /kse
    inside apt-get update
    inside apt-get satisfy --yes --no-install-recommends "$(dpkg-deb --field "$package" Depends)"
    list_files >"$scratch/before"
    inside apt-get install --yes --no-install-recommends "/kse/$package"
    inside env QT_QPA_PLATFORM=offscreen /kse/scripts/check-pictures.sh "$program" /tmp/pictures
    inside apt-get remove --yes "$program"
    list_files >"$scratch/after"
    diff "$scratch/before" "$scratch/after"
}

if [[ $EUID -eq 0 ]]; then
    check_installation
else
    dpkg-deb --extract "$package" "$scratch/root"
    QT_QPA_PLATFORM=offscreen scripts/check-pictures.sh "$scratch/root/usr/bin/$program" \
        "$scratch/pictures"
    echo "The package was only unpacked, because installing it needs root."
fi
echo "The package is $package."
