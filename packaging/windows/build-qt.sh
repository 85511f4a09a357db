#!/usr/bin/env bash
# Provides the Qt that the Windows program is built with, and prints its prefix as the only line on stdout.
#
# usage: packaging/windows/build-qt.sh
#
# OCELA_QT_MINGW_ARCHIVE=FILE  a ready Qt, in a .tar.xz with one top folder, is unpacked instead of building one
# OCELA_CACHE=FOLDER           where Qt is kept for the next time, instead of ~/.cache/ocela
#
# Without an archive Qt is cross-built from Debian's source packages, once; two cores need about 25 minutes.
set -euo pipefail
archive=${OCELA_QT_MINGW_ARCHIVE:+$(realpath -m "$OCELA_QT_MINGW_ARCHIVE")}
cache=$(realpath -m "${OCELA_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/ocela}")
source "$(dirname "$0")/../../tools/common.sh"

# The files given or, without any, stdin, as a short word.
checksum() { cat "$@" | sha256sum | cut -c1-12; }

# Every Qt appears in the cache by a rename at the very end, so that what is there is complete.
unpack_archive() {
    local part=$prefix.part
    say "Unpacking Qt from $archive ..."
    rm -rf "$part"
    mkdir "$part"
    tar -xJf "$archive" -C "$part"
    compgen -G "$part/*/lib/cmake/Qt5/Qt5Config.cmake" >/dev/null || { say "There is no Qt in $archive."; exit 1; }
    mv "$part"/* "$prefix"
    rmdir "$part"
}

if [ -n "$archive" ]; then
    [ -f "$archive" ] || { say "OCELA_QT_MINGW_ARCHIVE names a file that does not exist: $archive"; exit 1; }
    prefix=$cache/qt-mingw64-$(checksum "$archive")
    provide=unpack_archive
else
    say "Building Qt is not supported yet; set OCELA_QT_MINGW_ARCHIVE."
    exit 1
fi

mkdir -p "$cache"
exec {lock}>"$cache/qt.lock"
flock "$lock"
[ -d "$prefix" ] || "$provide"
echo "$prefix"
