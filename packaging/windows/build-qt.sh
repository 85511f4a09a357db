#!/usr/bin/env bash
# Provides Qt for the Windows program, and prints its prefix as the only line on stdout.
#
# usage: packaging/windows/build-qt.sh [--quick]
#
# --quick                      exits with status 3 if Qt would have to be built
# OCELA_QT_MINGW_ARCHIVE=FILE  a .tar.xz with a built Qt in one top-level folder, which is used instead of building Qt
# OCELA_CACHE=FOLDER           the cache for the next run; ~/.cache/ocela by default
#
# Without an archive, Qt is cross-compiled once from Debian's source packages. That takes half an hour on two cores.
set -euo pipefail
quick=${1:-}
archive=${OCELA_QT_MINGW_ARCHIVE:+$(realpath -m "$OCELA_QT_MINGW_ARCHIVE")}
cache=$(realpath -m "${OCELA_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/ocela}")
source "$(dirname "$0")/../../tools/common.sh"

compiler=x86_64-w64-mingw32
options=(
    -opensource -confirm-license -release -shared
    -xplatform win32-g++ -device-option "CROSS_COMPILE=$compiler-"
    # Qt locates its plugins relative to its libraries, so the installer does not contain the path of the cache.
    -prefix /qt
    -nomake examples -nomake tests -no-compile-examples
    # Bundled libraries only, so that Qt depends only on Windows and the compiler's runtime.
    -qt-zlib -qt-pcre -qt-doubleconversion -qt-freetype -qt-harfbuzz -qt-libpng -qt-libjpeg -no-icu -no-zstd
    -schannel -no-openssl
    -no-opengl -no-direct2d -no-dbus -no-feature-vulkan -no-feature-sql -no-feature-xml -no-feature-printer
    # The tablet feature needs wintab.h, which Debian's sources do not contain.
    -no-feature-tabletevent
)

# Prints the first 12 digits of the SHA-256 of the files. "-" is stdin.
checksum() { cat "$@" | sha256sum | cut -c1-12; }

# A complete Qt is renamed to its prefix, so that an interrupted run does not leave an incomplete one there.
unpack_archive() {
    say "Unpacking $archive ..."
    tar -xJf "$archive" -C "$work"
    compgen -G "$work/*/lib/cmake/Qt5/Qt5Config.cmake" >/dev/null || { say "The archive does not contain Qt."; exit 1; }
    mv -T "$work"/* "$prefix"
}

# Lists the machine's package repositories as source repositories. /etc is not changed and root is not needed.
list_source_repositories() {
    find /etc/apt -maxdepth 2 -name '*.list' -exec sed -En 's/^deb(-src)?[[:space:]]/deb-src /p' {} + >all.list
    find /etc/apt -maxdepth 2 -name '*.sources' -exec sed -s 's/^Types:.*/Types: deb-src/; $ G' {} + >all.sources
}

# Downloads the sources and applies Debian's patches.
download_sources() {
    local apt=(apt-get -q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$work/apt/repositories"
        -o Dir::State::Lists="$work/apt/lists" -o Dir::Cache="$work/apt/cache" -o APT::Sandbox::User=root)
    mkdir -p apt/{repositories,lists/partial,cache/archives/partial}
    (cd apt/repositories && list_source_repositories)
    "${apt[@]}" update
    "${apt[@]}" source qtbase-opensource-src qtsvg-opensource-src
    mv qtbase-opensource-src-*/ qtbase
    mv qtsvg-opensource-src-*/ qtsvg
    # The library names of the cross compiler are in lower case.
    sed -i 's/-lSecur32/-lsecur32/; s/-lCrypt32/-lcrypt32/' qtbase/src/network/ssl/ssl.pri
}

# Selects the compiler with POSIX threads, which may not be the default of this machine.
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

# Uses the qmake of the build tree, because the installed one does not find the bundled zlib.
build_qtsvg() {
    (cd qtsvg && ../qtbase/bin/qmake)
    make -C qtsvg
    make -C qtsvg install INSTALL_ROOT="$work/root"
}

# Makes the tree relocatable: qmake uses paths relative to its own folder.
make_relocatable() {
    printf '%s\n' '[Paths]' Prefix=.. HostPrefix=.. Sysroot= SysrootifyPrefix=false TargetSpec=win32-g++ \
        HostSpec=linux-g++ >root/qt/bin/qt.conf
}

show_end_of_log() {
    [ $? = 0 ] || { tail -n 40 log; echo "Building Qt failed. The complete log is in $work/log."; } >&2
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
    [ -f "$archive" ] || { say "The file in OCELA_QT_MINGW_ARCHIVE does not exist: $archive"; exit 1; }
    provide=unpack_archive
    key=$(checksum "$archive")
else
    # A new version of Qt in Debian, or a change of this script, needs a new build.
    [ -n "$quick" ] || ensure_packages build windows
    provide=build_qt
    key=$(dpkg-query -W -f='${source:Version}\n' qtbase5-dev libqt5svg5-dev | checksum - packaging/windows/build-qt.sh)
fi
prefix=$cache/qt-mingw64-$key
work=$prefix.part

[ -z "$quick" ] || [ -n "$archive" ] || [ -d "$prefix" ] || exit 3

mkdir -p "$cache"
exec {lock}>"$cache/qt.lock"
flock -n "$lock" || { say "Waiting until another run has provided Qt ..."; flock "$lock"; }
if [ ! -d "$prefix" ]; then
    rm -rf "$work"
    mkdir "$work"
    "$provide"
    rm -rf "$work"
fi
echo "$prefix"
