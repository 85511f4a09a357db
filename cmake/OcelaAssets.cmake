# Functions that generate resources: bitmaps from SVG files, copies of the JetBrains Mono fonts, and compiled translations.

find_program(RSVG_CONVERT rsvg-convert REQUIRED)
set(OCELA_FONT_DIR /usr/share/fonts/truetype/jetbrains-mono CACHE PATH "Folder of the JetBrains Mono fonts")

# ocela_render_svg(<svg> <png> <width>)
function(ocela_render_svg svg png width)
  get_filename_component(folder ${png} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(OUTPUT ${png}
    COMMAND ${RSVG_CONVERT} --width=${width} --keep-aspect-ratio --output=${png} ${svg}
    DEPENDS ${svg} VERBATIM)
endfunction()

# ocela_stage(<file> <copy>): copies a file at build time.
function(ocela_stage file copy)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "${file} is missing; see tools/packages/build.txt")
  endif()
  get_filename_component(folder ${copy} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(OUTPUT ${copy}
    COMMAND ${CMAKE_COMMAND} -E copy ${file} ${copy} DEPENDS ${file} VERBATIM)
endfunction()

# ocela_compile_translation(<ts> <qm>)
function(ocela_compile_translation ts qm)
  get_filename_component(folder ${qm} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(OUTPUT ${qm}
    COMMAND Qt5::lrelease -silent ${ts} -qm ${qm} DEPENDS ${ts} VERBATIM)
endfunction()
