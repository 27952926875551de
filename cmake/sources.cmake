# Which folder holds what is made for the system that is built for. Nothing else asks for it to choose sources.
if(WIN32)
  set(ZPRUSB_SYSTEM windows)
else()
  set(ZPRUSB_SYSTEM posix)
endif()

# Lists the C++ sources of folders, with those of the system in them.
function(zprusb_find_sources variable)
  set(patterns ${ARGN})
  list(TRANSFORM patterns REPLACE "(.+)" "\\1/*.cpp;\\1/${ZPRUSB_SYSTEM}/*.cpp")
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()
