#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# On Debian 12: installs missing packages, builds the program, makes an archive in build/portable
# that needs no Qt on the user's system, and lets the program in it draw its pictures under X11 and
# Wayland.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build portable
cmake --preset release
cmake --build --preset release

program=kestrane-settings-editor
list=packaging/linux/portable-system-libraries.txt
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' build/release/CMakeCache.txt)
name=$program-$version-linux-x86_64
archive=$PWD/build/portable/$name.tar.xz
scratch=$(mktemp -d "${TMPDIR:-/var/tmp}/kestrane-portable.XXXXXX")
weston=
finish() {
    if [[ -n $weston ]]; then
        kill "$weston"
        wait "$weston" || true
    fi
    rm -rf "$scratch"
}
trap finish EXIT
folder=$scratch/$name

# No theme plugin, because GTK would bring its own copies of some libraries. Without OpenGL, the
# program needs no plugin for it.
plugins=(imageformats/libq{gif,jpeg}
    platforminputcontexts/lib{compose,ibus}platforminputcontextplugin
    platforms/libq{offscreen,wayland-generic,xcb}
    tls/libqopensslbackend
    wayland-decoration-client/libbradient
    wayland-shell-integration/libxdg-shell)

is_system_library() {
    grep -qF "$1 " "$list"
}

# copy_file FILE TARGET: copies into the folder, and notes where it is from.
copy_file() {
    install -m 644 -D "$1" "$folder/$2"
    dpkg-query --search "*/$(basename "$(realpath "$1")")" | sed -n "1s|: .*| $2|p" \
        >>"$scratch/copied"
}

# Copies the libraries that a file needs, and those that these need.
copy_libraries() {
    local library path
    for library in $(patchelf --print-needed "$1"); do
        if ! is_system_library "$library" && [[ ! -e $folder/lib/$library ]]; then
            path=$(ldd "$1" | sed -n "s/^\t$library => \(.*\) (.*/\1/p")
            copy_file "$path" "lib/$library"
            copy_libraries "$path"
        fi
    done
}

make_folder() {
    cmake --install build/release --prefix "$scratch/usr" --strip >/dev/null
    mkdir -p "$folder"/{lib,licences,share}
    install packaging/linux/portable-start.sh "$folder/$program"
    cp "$scratch/usr/bin/$program" "$folder/lib"
    cp "$list" "$folder/lib/system-libraries.txt"
    printf '[Paths]\nPrefix = ..\nPlugins = plugins\n' >"$folder/lib/qt.conf"
    cp -r "$scratch"/usr/share/{applications,icons,mime} "$folder/share"

    local system plugin
    system=/usr/lib/$(gcc -print-multiarch)
    copy_libraries "$folder/lib/$program"
    for plugin in "${plugins[@]}"; do
        copy_file "$system/qt6/plugins/$plugin.so" "plugins/$plugin.so"
        copy_libraries "$system/qt6/plugins/$plugin.so"
    done
    # The plugin for TLS opens these when it is used, first by the names that the links have.
    copy_file "$system/libssl.so.3" lib/libssl.so.3
    copy_libraries "$system/libssl.so.3"
    ln -s libssl.so.3 "$folder/lib/libssl.so"
    ln -s libcrypto.so.3 "$folder/lib/libcrypto.so"
    # DT_RPATH goes before LD_LIBRARY_PATH, which may be that of a program with another Qt.
    patchelf --force-rpath --set-rpath "\$ORIGIN" "$folder"/lib/{"$program",*.so.*}
    patchelf --force-rpath --set-rpath "\$ORIGIN/../../lib" "$folder"/plugins/*/*.so
}

add_licences() {
    local package file source licence
    cp LICENSE "$folder/licences/$program.txt"
    cp packaging/linux/portable-licences.txt "$folder/licences/README.txt"
    sort -k 2 "$scratch/copied" | while read -r package file; do
        # shellcheck disable=SC2016 # for dpkg-query
        source=$(dpkg-query --show --showformat '${source:Package} ${source:Version}' "$package")
        printf '%-72s %s\n' "$file" "$source" >>"$folder/licences/README.txt"
        cp "/usr/share/doc/${package%:*}/copyright" "$folder/licences/${source% *}.txt"
    done
    grep -oh '/usr/share/common-licenses/[A-Za-z0-9.-]*[0-9]' "$folder"/licences/* | sort -u |
        while read -r licence; do
            cp "$licence" "$folder/licences/${licence##*/}.txt"
        done
}

# Nothing is missing, and no library of the system gets an older copy of one that it uses itself.
check_libraries() {
    local file library path
    for file in "${files[@]}"; do
        if ldd "$file" | grep 'not found' >&2; then
            echo "These libraries were not found for $file." >&2
            return 1
        fi
        for library in $(patchelf --print-needed "$file"); do
            if ! is_system_library "$library" && [[ ! -e $folder/lib/$library ]]; then
                echo "$library is neither in the folder nor in $list." >&2
                return 1
            fi
        done
        ldd "$file" | sed -n 's/.* => \(.*\) (.*/\1/p'
    done | grep -v "^$scratch" | sort -u >"$scratch/system"
    while read -r path; do
        for library in $(patchelf --print-needed "$path"); do
            if [[ -e $folder/lib/$library ]]; then
                echo "The system's $path needs $library, which is in the folder." >&2
                return 1
            fi
        done
    done <"$scratch/system"
}

# check_run PLATFORM [COMMAND...]: under that command, the program draws its pictures on the
# platform with no file of the Qt that is installed here.
check_run() {
    rm -f "$scratch"/files.*
    "${@:2}" env LD_DEBUG=files LD_DEBUG_OUTPUT="$scratch/files" QT_QPA_PLATFORM="$1" \
        scripts/check-pictures.sh "$scratch/link" "build/portable/pictures-$1"
    sed -n 's/.*calling init: //p' "$scratch"/files.* | sort -u >"$scratch/loaded"
    if ! grep -q "^$unpacked/plugins/platforms/libq$1" "$scratch/loaded"; then
        echo "The program did not draw on $1." >&2
        return 1
    fi
    if grep -v "^$unpacked/" "$scratch/loaded" | grep -i '/qt6/\|/libqt6\|/libicu'; then
        echo "The program used these files of the system on $1." >&2
        return 1
    fi
}

# Without a network the program asks for its ads too, for which it loads what HTTPS needs.
check_tls() {
    local loaded program_id
    rm -f "$scratch"/files.*
    env HOME="$scratch" XDG_CONFIG_HOME="$scratch/.config" XDG_CACHE_HOME="$scratch/.cache" \
        QT_QPA_PLATFORM=offscreen LD_DEBUG=files LD_DEBUG_OUTPUT="$scratch/files" "$scratch/link" &
    program_id=$!
    # shellcheck disable=SC2016 # expanded by the inner shell
    timeout 30 bash -c 'until grep -qs "calling init: .*/libssl" "$0"/files.*; do sleep 0.1; done' \
        "$scratch" || true
    kill "$program_id"
    wait "$program_id" || true
    loaded=$(sed -n 's/.*calling init: \(.*\/lib\(ssl\|crypto\)\..*\)/\1/p' "$scratch"/files.*)
    if [[ $loaded != "$unpacked/lib/libcrypto.so"$'\n'"$unpacked/lib/libssl.so" ]]; then
        echo "The program did not load its own OpenSSL, but: $loaded" >&2
        return 1
    fi
}

check_archive() {
    mkdir "$scratch/Программы und mehr"
    tar -C "$scratch/Программы und mehr" -xf "$archive"
    unpacked="$scratch/Программы und mehr/$name"
    ln -s "$unpacked/$program" "$scratch/link"

    check_tls
    check_run offscreen
    check_run xcb xvfb-run --auto-servernum

    export XDG_RUNTIME_DIR=$scratch/run WAYLAND_DISPLAY=wayland-kse
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    weston --backend=headless-backend.so --socket="$WAYLAND_DISPLAY" >"$scratch/weston.log" 2>&1 &
    weston=$!
    # shellcheck disable=SC2016 # expanded by the inner shell
    timeout 20 bash -c 'until [[ -S $0 ]]; do sleep 0.1; done' "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY"
    check_run wayland

    export XDG_DATA_HOME=$scratch/data
    "$scratch/link" --install
    desktop-file-validate "$XDG_DATA_HOME/applications/$program.desktop"
    "$scratch/link" --uninstall
    if find "$XDG_DATA_HOME" -name "$program*" | grep .; then
        echo "These files were not removed." >&2
        return 1
    fi

    patchelf --add-needed libabsent.so.1 "$unpacked/lib/$program"
    if "$scratch/link" --version 2>"$scratch/message" ||
        ! grep -q 'this system lacks libabsent.so.1: ' "$scratch/message"; then
        echo "The program doesn't say which library is missing." >&2
        return 1
    fi
}

make_folder
files=("$folder"/lib/{"$program",*.so.*} "$folder"/plugins/*/*.so)
add_licences
check_libraries
rm -rf build/portable
mkdir -p build/portable
tar -C "$scratch" --sort=name --owner=0 --group=0 --numeric-owner -cf - "$name" | xz -9 >"$archive"
check_archive
glibc=$(objdump -T "${files[@]}" | grep -o 'GLIBC_2[0-9.]*' | sort -uV | tail -n 1)
echo "The archive is $archive. It needs ${glibc/_/ }."
