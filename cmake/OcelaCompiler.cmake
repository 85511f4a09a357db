# Warnings, sanitizers and Qt defines of every target in this project, and the compiler cache.

# All clones share the cache: it ignores their paths, and the debug information does not contain them.
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()

set(OCELA_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread")

add_library(ocela_options INTERFACE)
target_include_directories(ocela_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(ocela_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -Wzero-as-null-pointer-constant -Werror)
# Clang's -Wconversion includes sign conversions, and its -Wpedantic rejects Qt's logging macros with one argument.
target_compile_options(ocela_options INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion -Wno-gnu-zero-variadic-macro-arguments>)
target_compile_definitions(ocela_options INTERFACE
  QT_NO_KEYWORDS
  QT_NO_FOREACH
  QT_NO_URL_CAST_FROM_STRING
  QT_DEPRECATED_WARNINGS
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

if(OCELA_SANITIZE)
  target_compile_options(ocela_options INTERFACE
    -fsanitize=${OCELA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(ocela_options INTERFACE -fsanitize=${OCELA_SANITIZE})
endif()
