#!/usr/bin/env bash
# Provides the Qt that the Windows program is built with, and prints its prefix as the only line on stdout.
#
# usage: packaging/windows/build-qt.sh [--quick]
#
# --quick                      ends with status 3 where Qt would have to be built
# OCELA_QT_MINGW_ARCHIVE=FILE  a ready Qt, in a .tar.xz with one top folder, is unpacked instead of building one
# OCELA_CACHE=FOLDER           where Qt is kept for the next time, instead of ~/.cache/ocela
#
# Without an archive Qt is cross-built from Debian's source packages, once; two cores need up to half an hour.
set -euo pipefail
quick=${1:-}
archive=${OCELA_QT_MINGW_ARCHIVE:+$(realpath -m "$OCELA_QT_MINGW_ARCHIVE")}
cache=$(realpath -m "${OCELA_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/ocela}")
source "$(dirname "$0")/../../tools/common.sh"

compiler=x86_64-w64-mingw32
lists=(packaging/{linux,windows}/debian-packages.txt)
options=(
    -opensource -confirm-license -release -shared
    -xplatform win32-g++ -device-option "CROSS_COMPILE=$compiler-"
    # Qt finds its parts from where its libraries are, so that no name of the cache gets into what users download.
    -prefix /qt
    -nomake examples -nomake tests -no-compile-examples
    # Nothing comes from the machine that builds: besides Qt, only Windows and the compiler's runtime are needed.
    -qt-zlib -qt-pcre -qt-doubleconversion -qt-freetype -qt-harfbuzz -qt-libpng -qt-libjpeg -no-icu -no-zstd
    -schannel -no-openssl
    -no-opengl -no-direct2d -no-dbus -no-feature-vulkan -no-feature-sql -no-feature-xml -no-feature-printer
    # Needs wintab.h, which the sources come without.
    -no-feature-tabletevent
)

# The first 12 digits of the SHA-256 of the files, or of stdin for a file named "-".
checksum() { cat "$@" | sha256sum | cut -c1-12; }

# A Qt appears under its prefix by a rename when it is complete: what an interrupted run leaves is not taken for one.
unpack_archive() {
    say "Unpacking $archive ..."
    tar -xJf "$archive" -C "$work"
    compgen -G "$work/*/lib/cmake/Qt5/Qt5Config.cmake" >/dev/null || { say "There is no Qt in it."; exit 1; }
    mv -T "$work"/* "$prefix"
}

# Where the machine's packages come from is where their sources are: neither /etc nor a root user is needed.
list_source_repositories() {
    find /etc/apt -maxdepth 2 -name '*.list' -exec sed -En 's/^deb(-src)?[[:space:]]/deb-src /p' {} + >all.list
    find /etc/apt -maxdepth 2 -name '*.sources' -exec sed -s 's/^Types:.*/Types: deb-src/; $ G' {} + >all.sources
}

# With Debian's patches applied.
download_sources() {
    local apt=(apt-get -q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$work/apt/repositories"
        -o Dir::State::Lists="$work/apt/lists" -o Dir::Cache="$work/apt/cache" -o APT::Sandbox::User=root)
    mkdir -p apt/{repositories,lists/partial,cache/archives/partial}
    (cd apt/repositories && list_source_repositories)
    "${apt[@]}" update
    "${apt[@]}" source qtbase-opensource-src qtsvg-opensource-src
    mv qtbase-opensource-src-*/ qtbase
    mv qtsvg-opensource-src-*/ qtsvg
    # File names of the cross compiler's libraries are in lower case.
    sed -i 's/-lSecur32/-lsecur32/; s/-lCrypt32/-lcrypt32/' qtbase/src/network/ssl/ssl.pri
}

# The compiler with POSIX threads, whichever is the machine's default.
choose_compiler() {
    local tool
    mkdir tools
    for tool in gcc g++; do
        ln -s "$(command -v "$compiler-$tool-posix")" "tools/$compiler-$tool"
    done
    export PATH=$work/tools:$PATH
}

configure_qtbase() { (cd qtbase && ./configure "${options[@]}"); }

build_qtbase() {
    make -C qtbase
    make -C qtbase install INSTALL_ROOT="$work/root"
}

# By the build tree's qmake, as an installed one does not know of the zlib in Qt.
build_qtsvg() {
    (cd qtsvg && ../qtbase/bin/qmake)
    make -C qtsvg
    make -C qtsvg install INSTALL_ROOT="$work/root"
}

# Lets the tree be moved: qmake looks for everything relative to its own folder.
make_relocatable() {
    printf '%s\n' '[Paths]' Prefix=.. HostPrefix=.. Sysroot= SysrootifyPrefix=false TargetSpec=win32-g++ \
        HostSpec=linux-g++ >root/qt/bin/qt.conf
}

show_end_of_log() {
    [ $? = 0 ] || { tail -n 40 log; echo "Building Qt failed; all that was printed is in $work/log"; } >&2
}

build_qt() {
    local step
    cd "$work"
    MAKEFLAGS=-j$(nproc)
    export MAKEFLAGS
    trap show_end_of_log EXIT
    for step in download_sources choose_compiler configure_qtbase build_qtbase build_qtsvg make_relocatable; do
        say "$(date +%T) Qt for Windows: ${step//_/ }"
        "$step" >>log 2>&1
    done
    mv -T root/qt "$prefix"
    say "$(date +%T) Qt for Windows is in $prefix"
}

if [ -n "$archive" ]; then
    [ -f "$archive" ] || { say "OCELA_QT_MINGW_ARCHIVE names a file that does not exist: $archive"; exit 1; }
    provide=unpack_archive
    key=$(checksum "$archive")
else
    # Debian's next version of Qt asks for a build of its own, and so does a change of this file.
    [ -n "$quick" ] || ensure_packages "${lists[@]}"
    provide=build_qt
    key=$(dpkg-query -W -f='${source:Version}\n' qtbase5-dev libqt5svg5-dev | checksum - packaging/windows/build-qt.sh)
fi
prefix=$cache/qt-mingw64-$key
work=$prefix.part

[ -z "$quick" ] || [ -n "$archive" ] || [ -d "$prefix" ] || exit 3

mkdir -p "$cache"
exec {lock}>"$cache/qt.lock"
flock -n "$lock" || { say "Waiting for another run to provide Qt ..."; flock "$lock"; }
if [ ! -d "$prefix" ]; then
    rm -rf "$work"
    mkdir "$work"
    "$provide"
    rm -rf "$work"
fi
echo "$prefix"
