# Warnings, sanitizers and reproducible output for every target of the project.

set(ZPRUSB_SANITIZE "" CACHE STRING "Sanitizers to build with, as in -fsanitize=")

add_library(zprusb_warnings INTERFACE)
target_compile_options(zprusb_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

if(ZPRUSB_SANITIZE)
  add_compile_options(-O1 -g1 -fsanitize=${ZPRUSB_SANITIZE} -fno-sanitize=vptr -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZPRUSB_SANITIZE})
endif()

# No path of the machine and no time stamp ends in what is shipped.
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
if(WIN32)
  add_link_options(-Wl,--no-insert-timestamp)
  # The C runtime's own shims are part of each program, so that no DLL of the compiler is needed.
  add_link_options(-static)
endif()
