#!/usr/bin/env bash
# Makes the archive and the installer from the program that build.sh has built. Prints their paths.
#
# usage: packaging/windows/package.sh
set -euo pipefail
source "$(dirname "$0")/../../tools/common.sh"
tree=$root/build/windows
packages=$root/build/packages
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:[^=]*=//p' "$tree/CMakeCache.txt")
folder=$tree/package/Ocela-$version
list=$tree/package/installed-files.txt
name=$packages/Ocela-$version-windows-x64

# Lists the contents of the folder with backslashes. A folder comes after its contents.
list_files() { find "$folder" -depth -mindepth 1 -printf '%P\n' | sed 's:/:\\:g'; }

make_archive() {
    rm -f "$name.zip"
    cmake -E chdir "$(dirname "$folder")" cmake -E tar cf "$name.zip" --format=zip "$(basename "$folder")"
    echo "$name.zip"
}

make_installer() {
    list_files >"$list"
    makensis -V2 -WX -DFOLDER="$folder" -DLIST="$list" -DOUTPUT="$name-setup.exe" -DVERSION="$version" \
        -DICON="$tree/packaging/windows/ocela.ico" packaging/windows/ocela.nsi >&2
    echo "$name-setup.exe"
}

rm -rf "$tree/package"
mkdir -p "$packages"
cmake --install "$tree" --strip --prefix "$folder" >&2
make_archive
make_installer
