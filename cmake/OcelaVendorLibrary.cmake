# ocela_vendor_library(<target> <name>): gives a library the file name of a vendor's library, so that the program loads it.
function(ocela_vendor_library target name)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
  endif()
endfunction()
