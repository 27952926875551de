# What is installed where, and packed.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(simulator_folder ${CMAKE_INSTALL_LIBDIR}/zprusb/simulator)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zprusb)
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The simulator stands apart: it works for whoever copies it beside the library, and for nobody by accident.
set_target_properties(zprusb_simulator PROPERTIES EXPORT_NAME simulator)
install(TARGETS zprusb EXPORT zprusb-targets INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS zprusb_simulator EXPORT zprusb-targets INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  RUNTIME DESTINATION ${simulator_folder}
  LIBRARY DESTINATION ${simulator_folder}
  ARCHIVE DESTINATION ${simulator_folder})
install(FILES include/zprusb.h include/zprusb_text.h control/simulator/zprusb_simulator.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

file(RELATIVE_PATH libraries_from_programs /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(zprusb_tool zprusb_service PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
install(TARGETS zprusb_tool zprusb_service zprusb_simulator_tool)

# The control library for real printers stands apart as well, and a rule gives their users the printers' files. The
# folder of the lock files is made when the system starts.
if(NOT WIN32)
  install(TARGETS zprusb_usb LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/zprusb/usb)
  install(FILES packaging/70-zprusb.rules DESTINATION lib/udev/rules.d)
  install(FILES packaging/tmpfiles.conf DESTINATION lib/tmpfiles.d RENAME zprusb.conf)
endif()

# Manual pages and completions.
if(NOT WIN32 AND NOT ZPRUSB_SANITIZE)
  set(pages ${PROJECT_BINARY_DIR}/manual)
  foreach(tool zprusb_tool zprusb_service zprusb_simulator_tool)
    get_target_property(tool ${tool} OUTPUT_NAME)
    install(FILES ${pages}/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${pages}/${tool}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
      RENAME ${tool})
    install(FILES ${pages}/_${tool} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
    install(FILES ${pages}/${tool}.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  endforeach()
endif()

# For programs that are built against an installed library.
install(EXPORT zprusb-targets NAMESPACE zprusb:: DESTINATION ${package_folder})
string(TOUPPER "${CMAKE_BUILD_TYPE}" configuration)
configure_package_config_file(cmake/zprusb-config.cmake.in zprusb-config.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(zprusb-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zprusb-config.cmake ${PROJECT_BINARY_DIR}/zprusb-config-version.cmake
  DESTINATION ${package_folder})
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_folder} /)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
configure_file(cmake/zprusb.pc.in zprusb.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zprusb.pc DESTINATION ${pkgconfig_folder})

# The import library in the form that Microsoft's linker takes, and the list it is made from.
if(WIN32)
  find_program(DLLTOOL_OF_LLVM NAMES llvm-dlltool llvm-dlltool-14 REQUIRED)
  set(definitions ${PROJECT_BINARY_DIR}/src/zprusb.def)
  set(import_library ${PROJECT_BINARY_DIR}/lib/RQX5820usb.lib)
  add_custom_command(OUTPUT ${import_library} DEPENDS ${definitions}
    COMMAND ${DLLTOOL_OF_LLVM} -m i386:x86-64 -d ${definitions} -D RQX5820usb.dll -l ${import_library})
  add_custom_target(zprusb_import_library ALL DEPENDS ${import_library})
  install(FILES ${import_library} DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES ${definitions} DESTINATION ${CMAKE_INSTALL_LIBDIR} RENAME RQX5820usb.def)
endif()

install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/zprusb
  REGEX "/examples/(CMakeLists.txt|run.cmake)$" EXCLUDE)
install(DIRECTORY samples DESTINATION ${CMAKE_INSTALL_DATADIR}/zprusb)
install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
# Without what is for those who change the library.
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
  REGEX "/docs/(reference|architecture.md|pictures/printed-page.png)$" EXCLUDE)
install(DIRECTORY ${PROJECT_BINARY_DIR}/reference/html DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference OPTIONAL)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(system_name windows)
  set(zprusb "bin\\zprusb")
  set(sample "share\\zprusb\\samples\\test-page.png")
  set(copy_simulator "copy lib\\zprusb\\simulator\\RQX5820UsbCtrl.dll bin")
  set(library_in_bin "; and the library")
else()
  set(CPACK_GENERATOR TGZ)
  set(system_name linux)
  set(zprusb bin/zprusb)
  set(sample share/zprusb/samples/test-page.png)
  set(copy_simulator "cp lib/zprusb/simulator/libRQX5820UsbCtrl.so lib")
  set(only_here "| `share/man`, `share/bash-completion`, `share/zsh`, `share/fish` | manual pages, and completions for shells |
| `lib/tmpfiles.d` | what makes the folder of the lock files when the system starts |
")
endif()
# What lies at the top of the package speaks of the package; of an installation, it would only be in the way.
configure_file(packaging/README.md.in top/README.md @ONLY)
set(CPACK_INSTALLED_DIRECTORIES ${PROJECT_BINARY_DIR}/top .)
set(package_name zprusb-${PROJECT_VERSION}-${system_name}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_FILE_NAME ${package_name})
set(CPACK_PACKAGE_VENDOR "the zprusb developers")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
include(CPack)
