# Cross-compiles for Windows x64 on Debian with MinGW-w64 and the Qt in OCELA_QT_PREFIX; see packaging/windows/build.sh.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
# The POSIX variant has the threads of the C++ standard library; the Win32 variant does not.
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(OCELA_QT_PREFIX "" CACHE PATH "Folder of a Qt for MinGW-w64, made by packaging/windows/build-qt.sh")
# CMake's compiler checks are projects of their own, which need this variable, too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OCELA_QT_PREFIX)
set(CMAKE_FIND_ROOT_PATH ${OCELA_QT_PREFIX} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Runs the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../packaging/windows/wine.sh)
