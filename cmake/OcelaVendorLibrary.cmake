# ocela_vendor_library(<target> <name>): a library under the file name that a vendor's has, for the program to load.
function(ocela_vendor_library target name)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
  endif()
endfunction()
