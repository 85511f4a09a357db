# Builds for Windows x64 on Debian, with MinGW-w64 and a Qt in OCELA_QT_PREFIX; see packaging/windows/build.sh.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
# With the C++11 threads of the standard library, which the other variant lacks.
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(OCELA_QT_PREFIX "" CACHE PATH "Folder of a Qt for MinGW-w64, as packaging/windows/build-qt.sh makes it")
# The compiler is tried out in projects of its own.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OCELA_QT_PREFIX)
set(CMAKE_FIND_ROOT_PATH ${OCELA_QT_PREFIX} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Runs the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../packaging/windows/wine.sh)
