#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# On Debian 12: installs missing packages, builds the program for 64-bit Windows, runs every test
# under Wine, makes a zip and an installer for users in build/windows, and tries both.
#   scripts/windows.sh [ARGUMENT FOR CTEST...]
# The first run also builds Qt for Windows, from the source of the system's own Qt, and keeps it in
# the user's cache. That takes 20 minutes on two cores.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build windows
qt_version=$(dpkg-query -W -f '${source:Version}' qt6-base-dev)
export KSE_WINDOWS_QT=${XDG_CACHE_HOME:-$HOME/.cache}/kestrane-qt-windows/$qt_version
build=$PWD/build/windows
program=kestrane-settings-editor
uninstaller=uninstall-kestrane.exe

scratch=$(mktemp -d "${TMPDIR:-/var/tmp}/kestrane-windows.XXXXXX")
end_wine() {
    wineserver -k || true # which may have ended by itself
}
finish() {
    if [[ ${WINEPREFIX:-} == "$scratch"/* ]]; then
        end_wine
    fi
    rm -rf "$scratch"
}
trap finish EXIT

# Fetches the source with copies of the system's package lists, which stay as they are.
fetch_qt_source() {
    mkdir -p "$scratch"/apt/{sources,lists/partial,cache/archives/partial}
    local list
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
        if [[ -s $list ]]; then
            sed -E 's/^Types:.*/Types: deb-src/; s/^deb /deb-src /' "$list" \
                >"$scratch/apt/sources/${list##*/}"
        fi
    done
    cat >"$scratch/apt/apt.conf" <<END
Dir::Etc::sourcelist "/dev/null";
Dir::Etc::sourceparts "$scratch/apt/sources";
Dir::State::lists "$scratch/apt/lists";
Dir::Cache "$scratch/apt/cache";
END
    (
        cd "$scratch"
        export APT_CONFIG=$scratch/apt/apt.conf
        apt-get update
        apt-get source --download-only "qt6-base=$qt_version"
        dpkg-source --no-check -x qt6-base_*.dsc qt-source
    )
}

build_qt() {
    fetch_qt_source
    # `direct2d` stays on, since Qt 6.4 doesn't link without it.
    local feature off=()
    for feature in sql dbus printsupport xml concurrent opengl opengl_dynamic vulkan icu zstd \
        brotli openssl glib libproxy tabletevent direct2d1_1 androiddeployqt macdeployqt \
        windeployqt qmake system_zlib system_pcre2 system_doubleconversion system_freetype \
        system_harfbuzz system_png system_jpeg system_libb2; do
        off+=("-DQT_FEATURE_$feature=OFF")
    done
    cmake -S "$scratch/qt-source" -B "$scratch/qt-build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/MinGW.cmake" -DCMAKE_INSTALL_PREFIX="$scratch/qt" \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
        -DINPUT_opengl=no -DFEATURE_pkg_config=OFF -DQT_FEATURE_testlib=ON \
        -DQT_FEATURE_direct2d=ON "${off[@]}" \
        -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_BUILD_BENCHMARKS=OFF
    cmake --build "$scratch/qt-build"
    cmake --install "$scratch/qt-build"
    # The compiler's runtime libraries.
    local library
    for library in libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll; do
        cp "$(x86_64-w64-mingw32-g++-posix -print-file-name=$library)" "$scratch/qt/bin"
    done
    mkdir -p "${KSE_WINDOWS_QT%/*}"
    mv "$scratch/qt" "$KSE_WINDOWS_QT"
    rm -rf "$scratch"/{qt-source,qt-build,apt}
}

# make_wine NAME: makes a Wine in the scratch folder, without a window manager, which is faster. Its
# temporary files have a path that isn't ASCII. It uses no folder of the real user.
make_wine() {
    export WINEPREFIX=$scratch/$1 WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
    export LANG=C.UTF-8 HOME=$scratch/home
    export XDG_CACHE_HOME=$HOME XDG_CONFIG_HOME=$HOME XDG_DATA_HOME=$HOME
    mkdir -p "$HOME"
    local temporary='C:\users\Jürgen Gößler\Temp'
    {
        env -u DISPLAY wineboot -i
        wine reg add 'HKCU\Software\Wine' /v Version /d win10 /f
        wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
        wine reg add 'HKCU\Environment' /v TEMP /d "$temporary" /f
        wine reg add 'HKCU\Environment' /v TMP /d "$temporary" /f
        mkdir -p "$WINEPREFIX/drive_c/users/Jürgen Gößler/Temp"
    } </dev/null >/dev/null
    end_wine
}

on_screen() {
    xvfb-run --auto-servernum --server-args '-screen 0 1600x1200x24' "$@"
}

# In two runs, because Wine's server can't change between having a screen and having none.
run_tests() {
    export WINEPATH="Z:${KSE_WINDOWS_QT//\//\\}\\bin"
    make_wine tests
    wineserver -p
    env -u DISPLAY ctest --preset windows "$@"
    end_wine
    wineserver -p
    KSE_WINE_PLATFORM=windows on_screen ctest --preset windows --parallel 1 "$@"
    end_wine
    unset WINEPATH
}

# The program with its libraries, in the layout in which Qt finds its plugins.
make_folder() {
    version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' "$build/CMakeCache.txt")
    name=$program-$version-windows
    folder=$scratch/$name
    mkdir -p "$folder"/{platforms,imageformats,tls,licences}
    cp "$build/src/app/$program.exe" "$folder"
    cp "$KSE_WINDOWS_QT"/bin/Qt6{Core,Gui,Network,Widgets}.dll "$folder"
    cp "$KSE_WINDOWS_QT"/bin/{libgcc_s_seh-1,libstdc++-6,libwinpthread-1}.dll "$folder"
    cp "$KSE_WINDOWS_QT/plugins/platforms/qwindows.dll" "$folder/platforms"
    cp "$KSE_WINDOWS_QT"/plugins/imageformats/q{gif,jpeg}.dll "$folder/imageformats"
    cp "$KSE_WINDOWS_QT/plugins/tls/qschannelbackend.dll" "$folder/tls"

    find "$folder" -type f -exec x86_64-w64-mingw32-strip {} +

    sed "s/@QT_VERSION@/$qt_version/" packaging/windows/licences.txt >"$folder/licences/README.txt"
    cp LICENSE "$folder/licences/$program.txt"
    local licence
    for licence in GPL-3 LGPL-3; do
        cp "/usr/share/common-licenses/$licence" "$folder/licences/$licence.txt"
    done
    cp /usr/share/doc/qt6-base-dev/copyright "$folder/licences/qt6-base.txt"
    cp /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright "$folder/licences/gcc.txt"
    cp /usr/share/doc/mingw-w64-x86-64-dev/copyright "$folder/licences/mingw-w64.txt"
}

make_zip() {
    zip_file=$build/$name.zip
    rm -f "$zip_file"
    (cd "$scratch" && zip -qr -X "$zip_file" "$name")
}

# make_installer FOLDER VERSION FILE UNINSTALLER: the last is a name in the folder that the user
# chooses. The uninstaller deletes only what FOLDER contains, and itself.
make_installer() {
    # shellcheck disable=SC1003,SC2016 # NSIS expands $INSTDIR, and \\ is one backslash for tr
    (
        cd "$1"
        find . -type f -printf 'Delete "$INSTDIR/%P"\n'
        find . -mindepth 1 -depth -type d -printf 'RMDir "$INSTDIR/%P"\n'
    ) | tr / '\\' >"$scratch/removal.nsh"
    makensis -V2 -WX -DFOLDER="$1" -DVERSION="$2" -DOUTPUT="$3" -DREMOVAL="$scratch/removal.nsh" \
        -DUNINSTALLER="$4" -DSIZE="$(du -sk "$1" | cut -f1)" packaging/windows/installer.nsi
}

# start_program FOLDER [COMMAND]: starts the program as a user would, first to save pictures in
# build/windows/pictures, then with its window. COMMAND runs while the window is shown. Wine must be
# new, and then sees only its own drive C:.
start_program() {
    local drive=$WINEPREFIX/drive_c settings
    settings=$drive/users/$(id -un)/AppData/Roaming/Pleiades
    mkdir -p "$settings"
    cp examples/core-*-pxi.settings "$settings"
    cp /usr/share/wine/fonts/*.ttf "$drive/windows/Fonts"
    (
        cd "$1"
        # shellcheck disable=SC2016 # expanded by the inner shell
        on_screen bash -euc '
            wine "$0.exe" --theme light --screenshots "C:\pictures"
            wine "$0.exe" &
            sleep 20
            eval "$1"
            wine taskkill /im "$0.exe" # like its close button
            wait $!
            wineserver -k' "$program" "${2:-}" </dev/null
    )
    rm -rf "$build/pictures"
    mv "$drive/pictures" "$build/pictures"
    local picture
    for picture in prefs-00 search search-font module-search unused-modules cleanup \
        cleanup-queued compare compare-all health review backups about advanced-changed advanced; do
        if [[ ! -s $build/pictures/$picture.png ]]; then
            echo "The picture $build/pictures/$picture.png was not written." >&2
            return 1
        fi
    done
}

check_zip() {
    make_wine zip
    rm "$WINEPREFIX/dosdevices/z:"
    unzip -q "$zip_file" -d "$WINEPREFIX/drive_c/Программы"
    start_program "$WINEPREFIX/drive_c/Программы/$name"
}

# Installs, moves, upgrades and starts the program, and removes it, with its settings and without.
# What the user or another program has written must stay.
check_installer() {
    make_wine installer
    rm "$WINEPREFIX/dosdevices/z:"
    local drive=$WINEPREFIX/drive_c data usual chosen entry settings cache guide
    data=$drive/users/$(id -un)/AppData
    usual="$data/Local/Programs/Kestrane Settings Editor"
    chosen="$drive/Программы/Kestrane Editor"
    entry="$data/Roaming/Microsoft/Windows/Start Menu/Programs/Kestrane Settings Editor.lnk"
    settings=$data/Roaming/Pleiades
    cache=$data/Local/KestraneSettingsStudio
    guide="$drive/users/Jürgen Gößler/Temp/KestraneSettingsEditor-Help.html"
    local own='HKCU\Software\KestraneSettingsStudio\KestraneSettingsStudio'
    local listed='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\kestrane-settings-editor'
    cp "$installer" "$drive/setup.exe"
    cp -r "$folder" "$scratch/older"
    mkdir "$scratch/older/dropped"
    touch "$scratch/older/dropped/old.dll"
    make_installer "$scratch/older" 0.0.1 "$drive/older.exe" uninstall.exe
    mkdir -p "${chosen%/*}"

    on_drive() {
        (cd "$drive" && env -u DISPLAY wine "$@" </dev/null >/dev/null)
    }
    # remove FOLDER: the uninstaller goes on in a copy of itself, so wait for that.
    remove() {
        on_drive "$1\\$uninstaller" /S
        wineserver -w
    }

    # remove_with_settings FOLDER: with a window, whose box is ticked by keyboard.
    remove_with_settings() {
        # shellcheck disable=SC2016 # expanded by the inner shell
        on_screen timeout 120 bash -euc '
            wine "$0" &
            xdotool search --sync --onlyvisible --name "Kestrane Settings Editor Uninstall"
            sleep 2
            xdotool key alt+a alt+u
            until timeout 2 wineserver -w; do
                xdotool key alt+c # its last page needs this
            done' "$1\\$uninstaller" </dev/null
    }
    # check_removal: what every removal deletes, and what none touches.
    check_removal() {
        diff -r "$scratch/settings" "$settings"
        if on_drive reg query "$listed" || [[ -e $guide || -e $entry ]]; then
            echo "The uninstaller left something behind." >&2
            return 1
        fi
    }

    # Another program's uninstaller: if it ran, it would install something.
    mkdir "$drive/other"
    cp "$drive/older.exe" "$drive/other/uninstall.exe"
    on_drive 'C:\setup.exe' /S '/D=C:\other'
    diff -r --exclude $uninstaller --exclude uninstall.exe "$folder" "$drive/other"
    remove 'C:\other'
    [[ ! -e $usual && $(ls "$drive/other") == uninstall.exe ]]
    cmp "$drive/older.exe" "$drive/other/uninstall.exe"

    on_drive 'C:\older.exe' /S
    diff -r --exclude uninstall.exe "$scratch/older" "$usual"
    # The folder stands without quotation marks, which Wine would put around one with a space.
    on_drive 'C:\older.exe' /S '/D=C:\Программы\Kestrane' Editor
    [[ ! -e $usual ]]
    touch "$chosen/note.txt"
    on_drive 'C:\setup.exe' /S
    diff -r --exclude $uninstaller --exclude note.txt "$folder" "$chosen"
    [[ -e $chosen/note.txt && -e $entry ]]
    end_wine

    # While the program runs, nothing can be installed or removed.
    # shellcheck disable=SC2016 # expanded in start_program
    start_program "$chosen" '
        result=0
        wine "C:\older.exe" /S || result=$?
        test "$result" -ne 0
        wine uninstall-kestrane.exe /S
        sleep 5'
    diff -r --exclude $uninstaller --exclude note.txt "$folder" "$chosen"

    cp "$settings"/core-001-pxi.settings{,.bak-20260311-142530}
    cp -r "$settings" "$scratch/settings"
    mkdir -p "$cache/KestraneSettingsStudio/cache/ads"
    touch "$guide" "$cache/KestraneSettingsStudio/cache/ads/apmf.xml"
    on_drive reg add "$own" /v kept
    on_drive reg query "$listed"
    remove 'C:\Программы\Kestrane Editor'
    check_removal
    [[ $(ls "$chosen") == note.txt && -e $cache/KestraneSettingsStudio/cache/ads/apmf.xml ]]
    on_drive reg query "$own"

    on_drive 'C:\setup.exe' /S
    end_wine
    remove_with_settings "C:\\users\\$(id -un)\\AppData\\Local\\Programs\\Kestrane Settings Editor"
    check_removal
    [[ ! -e $usual && ! -e $cache ]]
    if on_drive reg query "${own%\\*}"; then
        echo "The uninstaller left the program's settings." >&2
        return 1
    fi
    end_wine
}

if [[ ! -d $KSE_WINDOWS_QT ]]; then
    build_qt
fi
cmake --preset windows
cmake --build --preset windows
run_tests "$@"
make_folder
make_zip
installer=$build/$name-setup.exe
make_installer "$folder" "$version" "$installer" $uninstaller
check_zip
check_installer
echo "The zip is $zip_file, the installer is $installer,"
echo "and pictures of the program are in $build/pictures."
