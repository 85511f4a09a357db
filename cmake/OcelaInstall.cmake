# Where `cmake --install` puts the program, below the prefix. What it loads or serves lies beside it.
if(WIN32)
  set(OCELA_PROGRAM_DIR .)
else()
  set(OCELA_PROGRAM_DIR lib/ocela)
endif()

# What is installed needs the targets Ocela and ocela_web alone: neither tests nor simulators have to be built for it.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
