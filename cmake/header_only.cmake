# Header-only libraries of the tools and the simulator. Both compilers find them through a folder of links:
# /usr/include itself would bring the host's C library headers into the cross build.
set(header_only ${PROJECT_BINARY_DIR}/header-only)
file(MAKE_DIRECTORY ${header_only})
foreach(library CLI nlohmann)
  if(NOT EXISTS /usr/include/${library})
    message(FATAL_ERROR "/usr/include/${library} is missing; scripts/install-dependencies installs it.")
  endif()
  file(CREATE_LINK /usr/include/${library} ${header_only}/${library} SYMBOLIC)
endforeach()
add_library(zprusb_header_only INTERFACE)
target_include_directories(zprusb_header_only SYSTEM INTERFACE ${header_only})
