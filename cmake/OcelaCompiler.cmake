# Warnings, sanitizers and Qt defines that every target of this project shares.

set(OCELA_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread")

add_library(ocela_options INTERFACE)
target_include_directories(ocela_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(ocela_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
# Clang counts changes of sign to the conversions, and warns of Qt's variadic logging macros with one argument.
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
