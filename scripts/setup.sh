#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs missing packages on Debian 12, Ubuntu 24.04 and later.
#   scripts/setup.sh [build] [test] [package] [fuzz] [accessibility] [ci] [portable] [debian]
#     [windows]
set -euo pipefail

# Qt's base packages contain the X11 and offscreen platforms; a bare system has no fonts.
build=(g++ cmake ninja-build qt6-base-dev qt6-wayland fonts-dejavu-core)
test=(openssl procps)
package=(dpkg-dev file lintian)
fuzz=(clang libclang-rt-dev llvm)
accessibility=(at-spi2-core dbus gir1.2-atspi-2.0 openbox python3-gi xauth xvfb)
ci=(appstream clang-format clang-tidy clazy desktop-file-utils g++-mingw-w64-x86-64-posix git
    libbenchmark-dev libpugixml-dev mold shellcheck)
portable=(desktop-file-utils patchelf weston xauth xvfb xz-utils)
debian=(debootstrap)
windows=(dpkg-dev fonts-wine g++-mingw-w64-x86-64-posix nsis qt6-base-dev-tools unzip wine wine64
    xauth xdotool xvfb zip)

needed=()
for part in "${@:-build}"; do
    case $part in
    build) needed+=("${build[@]}") ;;
    test) needed+=("${test[@]}") ;;
    package) needed+=("${package[@]}") ;;
    fuzz) needed+=("${fuzz[@]}") ;;
    accessibility) needed+=("${accessibility[@]}") ;;
    ci) needed+=("${ci[@]}") ;;
    portable) needed+=("${portable[@]}") ;;
    debian) needed+=("${debian[@]}") ;;
    windows) needed+=("${windows[@]}") ;;
    *)
        echo "Usage: scripts/setup.sh [build] [test] [package] [fuzz] [accessibility] [ci]" \
            "[portable] [debian] [windows]" >&2
        exit 2
        ;;
    esac
done

if ! command -v apt-get >/dev/null; then
    echo "This is neither Debian nor Ubuntu: nothing was installed. The build needs a C++17"
    echo "compiler, CMake 3.21, Ninja and Qt 6.4 or newer with Widgets and Network."
    exit 0
fi

missing=()
for package in "${needed[@]}"; do
    if [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) != installed ]]; then
        missing+=("$package")
    fi
done
if [[ ${#missing[@]} -eq 0 ]]; then
    exit 0
fi

echo "Installing missing packages: ${missing[*]}"
as_root=()
if [[ $EUID -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
        echo "This needs root. Run as root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --yes --no-install-recommends "${missing[@]}"
