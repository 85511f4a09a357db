#!/usr/bin/env bash
# Builds the Windows program with build.sh, runs clang-tidy over the sources for Windows, and runs the tests under Wine.
#
# usage: packaging/windows/test.sh [CTEST ARGUMENT ...]
set -euo pipefail
cd "$(dirname "$0")/../.."

packaging/windows/build.sh
tools/tidy --windows
ctest --preset windows "$@"
