#!/usr/bin/env bash
# Installs what is missing, builds, and makes the package for Debian 12. Prints the package's path.
#
# usage: packaging/linux/build.sh
set -euo pipefail
source "$(dirname "$0")/../../tools/common.sh"

ensure_packages
build release Ocela ocela_web
desktop-file-validate packaging/linux/ocela.desktop
rm -f build/packages/ocela_*.deb
cpack --config build/release/CPackConfig.cmake >&2
echo "$root"/build/packages/ocela_*.deb
