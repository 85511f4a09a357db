#!/usr/bin/env bash
# Builds the Windows program as build.sh does, and runs its tests under Wine.
#
# usage: packaging/windows/test.sh [CTEST ARGUMENTS ...]
set -euo pipefail
cd "$(dirname "$0")/../.."

packaging/windows/build.sh
ctest --preset windows "$@"
