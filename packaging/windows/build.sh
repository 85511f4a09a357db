#!/usr/bin/env bash
# Installs what is missing, builds the program for Windows, and makes what users download: an archive and an installer.
#
# usage: packaging/windows/build.sh
#
# Qt comes from build-qt.sh, which has its own options. The results are in build/packages; prints their paths.
set -euo pipefail
source "$(dirname "$0")/../../tools/common.sh"
tree=$root/build/windows
packages=$root/build/packages

configure() {
    local qt
    qt=$(packaging/windows/build-qt.sh)
    cmake --preset windows -DOCELA_QT_PREFIX="$qt" >&2
}

version() { sed -n 's/^CMAKE_PROJECT_VERSION:[^=]*=//p' "$tree/CMakeCache.txt"; }

make_archive() {
    local folder=$1
    rm -f "$name.zip"
    cmake -E chdir "$(dirname "$folder")" cmake -E tar cf "$name.zip" --format=zip "$(basename "$folder")"
    echo "$name.zip"
}

make_installer() {
    local folder=$1
    makensis -V2 -WX -DFOLDER="$folder" -DOUTPUT="$name-setup.exe" -DVERSION="$(version)" \
        -DICON="$tree/packaging/windows/ocela.ico" -DSIZE_KB="$(du -sk "$folder" | cut -f1)" packaging/windows/ocela.nsi >&2
    echo "$name-setup.exe"
}

ensure_packages packaging/linux/debian-packages.txt packaging/windows/debian-packages.txt
configure
cmake --build --preset windows >&2

name=$packages/Ocela-$(version)-windows-x64
staging=$tree/package/Ocela-$(version)
rm -rf "$tree/package"
mkdir -p "$packages"
cmake --install "$tree" --strip --prefix "$staging" >&2
make_archive "$staging"
make_installer "$staging"
