#!/usr/bin/env bash
# Installs missing packages, builds the program, and makes the package for Debian 12. Prints the path of the package.
#
# usage: packaging/linux/build.sh
set -euo pipefail
source "$(dirname "$0")/../../tools/common.sh"

ensure_packages build linux-package
build program Ocela ocela_web
desktop-file-validate packaging/linux/*.desktop
appstreamcli --no-color validate --no-net build/program/packaging/linux/*.metainfo.xml >&2
rm -f build/packages/ocela_*.deb
cpack --config build/program/CPackConfig.cmake >&2
echo "$root"/build/packages/ocela_*.deb
