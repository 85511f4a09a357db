#!/usr/bin/env bash
# Runs a Windows program of this tree under Wine; the tests are run so.
#
# usage: packaging/windows/wine.sh PROGRAM.EXE [ARGUMENTS ...]
#
# OCELA_QT_PREFIX=FOLDER  the Qt for MinGW-w64 whose DLLs the program finds
# WINEPATH=FOLDER         one more folder that DLLs are found in
# WINEPREFIX=FOLDER       the Windows that it runs in; build/windows/wine otherwise
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Every folder of this machine lies on the drive Z.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

compiler_folder=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)")
runtime_folder=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libwinpthread-1.dll)")
search=
for folder in ${WINEPATH:+"$WINEPATH"} ${OCELA_QT_PREFIX:+"$OCELA_QT_PREFIX/bin"} "$compiler_folder" "$runtime_folder"; do
    search+=${search:+;}$(windows_path "$folder")
done

export WINEPREFIX=${WINEPREFIX:-$here/../../build/windows/wine}
# Else the user's folders would be those of whoever runs this.
export HOME=$WINEPREFIX/home
mkdir -p "$HOME"
export WINEPATH=$search
# Neither Wine's own messages nor its offers to install an interpreter or a browser.
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
# Wine keeps variables of that kind for itself unless they are named so.
for name in $(compgen -e QT_); do export "WINE$name=${!name}"; done
# The services that come with the first program outlive the last one by seconds. They are not to hold the program's
# output: whoever reads that waits for its end.
wine cmd /c exit </dev/null &>/dev/null || true
exec wine "$@"
