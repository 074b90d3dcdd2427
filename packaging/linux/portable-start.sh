#!/bin/sh
# SPDX-License-Identifier: MIT
# Starts Kestrane Settings Editor from the folder in which this file lies, wherever that is.
#   kestrane-settings-editor [ARGUMENT...]   starts the program
#   kestrane-settings-editor --install       puts menu entry, icon and file type into your home
#   kestrane-settings-editor --uninstall     takes them away
set -eu

here=$(dirname "$(readlink -f "$0")")
program=kestrane-settings-editor
data=${XDG_DATA_HOME:-$HOME/.local/share}

refresh() {
    for command in "update-desktop-database $data/applications" "update-mime-database $data/mime"; do
        if command -v "${command%% *}" >/dev/null; then
            "${command%% *}" "${command#* }" || true # menus find the files a little later then
        fi
    done
}

case ${1-} in
--install)
    (cd "$here/share" && find . -type f) | while IFS= read -r file; do
        mkdir -p "$data/${file%/*}"
        cp "$here/share/$file" "$data/$file"
    done
    # Within the quotation marks of an entry these characters have a meaning, and % has everywhere.
    start=$(printf '%s' "$here/$program" | sed 's/[\\"`$]/\\\\&/g; s/%/%%/g; s/[&|\\]/\\&/g')
    sed -i "s|^Exec=[^ ]*|Exec=\"$start\"|" "$data/applications/$program.desktop"
    refresh
    echo "Kestrane Settings Editor is in your menu now. Leave the folder where it is: $here"
    exit
    ;;
--uninstall)
    (cd "$here/share" && find . -type f) | while IFS= read -r file; do
        rm -f "$data/$file"
    done
    refresh
    echo "Kestrane Settings Editor is no longer in your menu. You can delete the folder $here."
    exit
    ;;
esac

missing=$(ldd "$here/lib/$program" "$here"/lib/plugins/platforms/libqxcb.so |
    sed -n 's/^[[:space:]]*\(.*\) => not found$/\1/p' | sort -u | tr '\n' ' ')
if [ -n "$missing" ]; then
    echo "Kestrane Settings Editor needs libraries that this system lacks: ${missing% }." \
        "Install the packages that contain them." >&2
    exit 1
fi
exec "$here/lib/$program" "$@"
