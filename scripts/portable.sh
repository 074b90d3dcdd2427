#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# On Debian 12: installs missing packages, builds the program, and packs it with Qt into one archive
# in build/portable that runs on other distributions of the same age or newer. Fails if the program
# in it doesn't start under X11 and under Wayland.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build package portable
cmake --preset release
cmake --build --preset release

program=kestrane-settings-editor
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' build/release/CMakeCache.txt)
name=$program-$version-linux-$(uname -m)
libraries=/usr/lib/$(g++ -print-multiarch)
rm -rf build/portable
folder=$PWD/build/portable/$name
mkdir -p "$folder"/{lib/plugins,share,licences}

# What every system with a window has, in a version that fits its own drivers, fonts and windows.
own='lib(c|m|dl|pthread|rt|resolv|stdc\+\+|gcc_s|GL|GLX|GLdispatch|OpenGL|EGL|drm|gbm|X11'
own+='|X11-xcb|Xau|Xdmcp|xcb|bsd|md|fontconfig|freetype|expat|png16|brotli[a-z]+|z|wayland-[a-z]+'
own+='|ffi)\.so.*|ld-linux.*'

DESTDIR=$PWD/build/portable/root cmake --install build/release --prefix /usr --strip >/dev/null
root=build/portable/root/usr
cp "$root/bin/$program" "$folder/lib"
cp -r "$root"/share/{applications,icons,mime} "$folder/share"
rm -r build/portable/root
(
    cd "$libraries/qt6/plugins"
    cp -r --parents platforms/libq{xcb,wayland-egl,wayland-generic,offscreen}.so imageformats \
        platforminputcontexts tls wayland-decoration-client wayland-shell-integration \
        wayland-graphics-integration-client/libqt-plugin-wayland-egl.so xcbglintegrations \
        "$folder/lib/plugins"
)
printf '[Paths]\nPrefix=.\nPlugins=plugins\n' >"$folder/lib/qt.conf"

# What all of them link, but for the system's own; and the licence of each package that it is from.
mapfile -t files < <(find "$folder/lib" -type f -name '*.so' -o -name "$program")
mapfile -t needed < <(ldd "${files[@]}" | sed -n 's/^\t.* => \(\/[^ ]*\) .*/\1/p' | sort -u |
    grep -vE "/($own)$")
cp --dereference "${needed[@]}" "$folder/lib"
for library in "${needed[@]}"; do
    package=$(dpkg-query -S "*/${library##*/}" | head -n 1)
    package=${package%%:*}
    cp --dereference "/usr/share/doc/$package/copyright" "$folder/licences/$package.txt"
done
cp LICENSE "$folder/licences/$program.txt"
for licence in GPL-2 GPL-3 LGPL-2.1 LGPL-3; do
    cp "/usr/share/common-licenses/$licence" "$folder/licences"
done
cat >"$folder/licences/README.txt" <<END
$program.txt is the licence of Kestrane Settings Editor. Each other file is that of the package of
Debian 12 whose libraries are in the folder lib, unchanged but for where they find each other. Their
sources are in Debian's archive. You may replace them with another build of the same version.
END
find "$folder/lib" -maxdepth 1 -type f ! -name qt.conf -exec patchelf --set-rpath "\$ORIGIN" {} +
find "$folder/lib/plugins" -type f -exec patchelf --set-rpath "\$ORIGIN/../.." {} +
install -m 755 packaging/linux/portable-start.sh "$folder/$program"
archive=$folder.tar.xz
tar -C build/portable --owner=root --group=root -cJf "$archive" "$name"
rm -r "$folder"

# Tries the archive from a folder whose name is hard to read, through a link, as a user does.
scratch=$(mktemp -d "${TMPDIR:-/var/tmp}/kestrane portable.Gößler.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
tar -C "$scratch" -xf "$archive"
start=$scratch/start
ln -s "$scratch/$name/$program" "$start"
foreign=$(find "$scratch/$name/lib/$program" "$scratch/$name/lib/plugins" -type f -exec ldd {} + |
    sed -n 's/^\t\(.*\) => \(not found\|\/.*\)/\1 \2/p' |
    grep -vF "$scratch" | grep -vE "^($own) " | sort -u) || true
if [[ -n $foreign ]]; then
    echo "These libraries don't come from the archive: $foreign" >&2
    exit 1
fi
settings=$scratch/home/.config/Pleiades
mkdir -p "$settings" "$scratch/run"
chmod 700 "$scratch/run"
cp examples/core-*-pxi.settings "$settings"
user=(env -i PATH="$PATH" HOME="$scratch/home" LANG=C.UTF-8 XDG_RUNTIME_DIR="$scratch/run")

"${user[@]}" "$start" --install >/dev/null
desktop-file-validate "$scratch/home/.local/share/applications/$program.desktop"
"${user[@]}" "$start" --uninstall >/dev/null
if find "$scratch/home/.local/share" -name "*$program*" | grep .; then
    echo "--uninstall has left this behind." >&2
    exit 1
fi

"${user[@]}" xvfb-run --auto-servernum env QT_QPA_PLATFORM=xcb "$start" --screenshots "$scratch/x11"
"${user[@]}" weston --backend=headless-backend.so --socket=kestrane --idle-time=0 >/dev/null 2>&1 &
weston=$!
until [[ -S $scratch/run/kestrane ]]; do
    sleep 0.1
    kill -0 "$weston"
done
"${user[@]}" WAYLAND_DISPLAY=kestrane QT_QPA_PLATFORM=wayland "$start" \
    --screenshots "$scratch/wayland"
kill "$weston"
for platform in x11 wayland; do
    if [[ ! -s $scratch/$platform/review.png ]]; then
        echo "The program in the archive drew no pictures under $platform." >&2
        exit 1
    fi
done
echo "The archive is $archive."
