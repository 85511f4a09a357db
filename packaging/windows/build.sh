#!/usr/bin/env bash
# Installs missing packages, builds the program for Windows, and makes the archive and the installer; see package.sh.
#
# usage: packaging/windows/build.sh
#
# Qt comes from build-qt.sh, which has options of its own. Prints the paths of the results in build/packages.
set -euo pipefail
source "$(dirname "$0")/../../tools/common.sh"

ensure_packages build test windows
qt=$(packaging/windows/build-qt.sh)
cmake --preset windows -DOCELA_QT_PREFIX="$qt" >&2
cmake --build --preset windows >&2
packaging/windows/package.sh
