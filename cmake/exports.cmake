# Makes the linker's export list of a shared library from a file with one name a line. On Linux the names carry a
# version, which is the interface's: it stays while programs need not be linked anew.
function(zprusb_set_exports target list)
  file(STRINGS ${list} names)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  if(WIN32)
    list(JOIN names "\n" lines)
    file(CONFIGURE OUTPUT ${target}.def CONTENT "EXPORTS\n${lines}\n")
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
  else()
    list(JOIN names ";\n    " lines)
    get_target_property(version ${target} OUTPUT_NAME)
    string(TOUPPER ${version}_1 version)
    file(CONFIGURE OUTPUT ${target}.map CONTENT "${version} {\n  global:\n    ${lines};\n  local:\n    *;\n};\n")
    # What the library itself calls is its own, whatever names the program has.
    target_link_options(${target} PRIVATE -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/${target}.map
                        -Wl,-Bsymbolic-functions)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  endif()
endfunction()
