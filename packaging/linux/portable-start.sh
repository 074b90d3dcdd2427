#!/bin/sh
# SPDX-License-Identifier: MIT
# Starts Kestrane Settings Editor with the Qt in this folder.
#   kestrane-settings-editor [ARGUMENT FOR THE PROGRAM...]
#   kestrane-settings-editor --install | --uninstall
# --install adds the program to the user's menu, with its icon and the type of settings files;
# --uninstall removes that.
set -eu

name=kestrane-settings-editor
here=$(dirname "$(readlink -f "$0")")
loader=/lib64/ld-linux-x86-64.so.2

# Prints what the dynamic linker can't find for the files: libraries, such as libEGL.so.1, and
# versions of the interface of one that is too old, such as GLIBC_2.35.
missing() {
    if [ ! -e "$loader" ]; then
        echo ld-linux-x86-64.so.2
        return
    fi
    for file; do
        LD_TRACE_LOADED_OBJECTS=1 "$loader" "$here/$file" 2>&1
    done | sed -n -e 's/^[[:space:]]*\(.*\) => not found.*/\1/p' \
        -e "s/.*version .\([A-Z].*\)' not found.*/\1/p" | sort -u
}

# Ends with a sentence unless the program finds its libraries, and those for X11 or for Wayland.
check_libraries() {
    x11=plugins/platforms/libqxcb.so
    wayland=plugins/platforms/libqwayland-generic.so
    if [ -n "${QT_QPA_PLATFORM:-}" ]; then
        lacking=$(missing "lib/$name")
    elif [ -n "${WAYLAND_DISPLAY:-}" ] && [ -z "$(missing "lib/$name" $wayland)" ]; then
        lacking=
    else
        lacking=$(missing "lib/$name" $x11)
    fi
    if [ -z "$lacking" ]; then
        return
    fi
    versions=$(printf '%s' "$lacking" | grep '^[A-Z]' | tr '\n' ' ')
    packages=$(for library in $lacking; do
        sed -n "s/^$library //p" "$here/lib/system-libraries.txt"
    done | sort -u | tr '\n' ' ')
    lacking=$(printf '%s' "$lacking" | tr '\n' ' ')
    problem="Kestrane Settings Editor can't start because this system"
    if [ -n "$versions" ]; then
        echo "$problem is too old: its libraries don't have ${versions% }." >&2
    else
        hint=
        if [ -n "$packages" ]; then
            hint=", on Debian and Ubuntu with \"sudo apt install ${packages% }\""
        fi
        echo "$problem lacks $lacking: install what contains that$hint." >&2
    fi
    exit 1
}

# Tells the desktop about files that came or went, as far as it keeps caches.
refresh() {
    icons=$data/icons/hicolor
    if [ -d "$icons" ]; then
        touch "$icons"
    fi
    if [ -e "$icons/icon-theme.cache" ] && command -v gtk-update-icon-cache >/dev/null; then
        gtk-update-icon-cache --quiet --force --ignore-theme-index "$icons" || true
    fi
    if [ -d "$data/mime/packages" ] && command -v update-mime-database >/dev/null; then
        update-mime-database "$data/mime" || true
    fi
    if [ -d "$data/applications" ] && command -v update-desktop-database >/dev/null; then
        update-desktop-database --quiet "$data/applications" || true
    fi
}

install_for_user() {
    (cd "$here/share" && find . -type f) | while IFS= read -r file; do
        mkdir -p "$data/${file%/*}"
        cp "$here/share/$file" "$data/$file"
    done
    # The quoting of desktop entries: first inside the double quotes, then of the whole value.
    # shellcheck disable=SC2016
    command=$(printf '%s' "$here/$name" | sed 's/["`$\\]/\\&/g; s/\\/\\\\/g; s/%/%%/g')
    {
        grep -v '^Exec=' "$here/share/applications/$name.desktop"
        printf 'Exec="%s" %%f\n' "$command"
    } >"$data/applications/$name.desktop"
    refresh
    echo "Kestrane Settings Editor is in your menu, and starts from $here."
}

uninstall_for_user() {
    (cd "$here/share" && find . -type f) | while IFS= read -r file; do
        rm -f "$data/$file"
    done
    refresh
    echo "Kestrane Settings Editor is no longer in your menu. To remove it, delete $here."
}

case $#${1:-} in
1--install)
    data=${XDG_DATA_HOME:-$HOME/.local/share}
    check_libraries
    install_for_user
    ;;
1--uninstall)
    data=${XDG_DATA_HOME:-$HOME/.local/share}
    uninstall_for_user
    ;;
*)
    check_libraries
    # Those of another Qt wouldn't fit.
    unset QT_PLUGIN_PATH QT_QPA_PLATFORM_PLUGIN_PATH
    exec "$here/lib/$name" "$@"
    ;;
esac
