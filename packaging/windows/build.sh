#!/usr/bin/env bash
# Installs what is missing, builds the program for Windows, and makes what users download; see package.sh.
#
# usage: packaging/windows/build.sh
#
# Qt comes from build-qt.sh, which has its own options. The results are in build/packages; prints their paths.
set -euo pipefail
source "$(dirname "$0")/../../tools/common.sh"

ensure_packages packaging/linux/debian-packages.txt packaging/windows/debian-packages.txt
qt=$(packaging/windows/build-qt.sh)
cmake --preset windows -DOCELA_QT_PREFIX="$qt" >&2
cmake --build --preset windows >&2
packaging/windows/package.sh
