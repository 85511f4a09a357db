#!/usr/bin/env bash
# Builds the Windows program as build.sh does, checks the sources that are for Windows alone, and runs the tests under Wine.
#
# usage: packaging/windows/test.sh [CTEST ARGUMENTS ...]
set -euo pipefail
cd "$(dirname "$0")/../.."

packaging/windows/build.sh
tools/lint --windows
ctest --preset windows "$@"
