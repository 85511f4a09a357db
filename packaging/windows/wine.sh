#!/usr/bin/env bash
# Runs a Windows program, such as a test, under Wine.
#
# usage: packaging/windows/wine.sh PROGRAM.EXE [ARGUMENT ...]
#
# OCELA_QT_PREFIX=FOLDER  the Qt for MinGW-w64 that the program uses
# WINEPATH=FOLDER         an additional folder for DLLs
# WINEPREFIX=FOLDER       the Wine prefix; build/windows/wine by default
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Wine shows the root folder of this machine as the drive Z.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

compiler_folder=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)")
runtime_folder=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libwinpthread-1.dll)")
search=
for folder in ${WINEPATH:+"$WINEPATH"} ${OCELA_QT_PREFIX:+"$OCELA_QT_PREFIX/bin"} "$compiler_folder" "$runtime_folder"; do
    search+=${search:+;}$(windows_path "$folder")
done

export WINEPREFIX=${WINEPREFIX:-$here/../../build/windows/wine}
# Otherwise, the folders of the Windows user would link to the home folder of the current user.
export HOME=$WINEPREFIX/home
mkdir -p "$HOME"
export WINEPATH=$search
# Shows only Wine's errors, and disables its offers to install Mono and Gecko.
export WINEDEBUG=${WINEDEBUG:--all,err+all} WINEDLLOVERRIDES="mscoree,mshtml=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
# Wine passes QT_ variables to the program only with the prefix WINE.
for name in $(compgen -e QT_); do export "WINE$name=${!name}"; done
# Wine's loader needs the fixed address 7ffe0000. Linux places the loader's heap at random within 1 GiB around it, so about
# one program in 1000 would not start ("failed to map the shared user data").
fixed_addresses=
if setarch -R true 2>/dev/null; then fixed_addresses='setarch -R'; fi
# Wine's services outlive the last program by some seconds. Start them without the output of the program. Otherwise, a
# reader of the output would wait until the services have closed it, too.
$fixed_addresses wine cmd /c exit </dev/null &>/dev/null || true
exec $fixed_addresses wine "$@"
