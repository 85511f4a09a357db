# The folder of the program below the install prefix. Its libraries and web pages are in the same folder.
if(WIN32)
  set(OCELA_PROGRAM_DIR .)
else()
  set(OCELA_PROGRAM_DIR lib/ocela)
endif()

# `cmake --install` needs only the targets Ocela and ocela_web, so the tests and simulators need not be built.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
