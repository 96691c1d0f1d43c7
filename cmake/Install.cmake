# What `cmake --install` puts where, the uninstall target, and the Debian package. Folders outside the
# prefix are CUPS's own (Cups.cmake finds them); DESTDIR goes before all of them.

# The system volume of macOS is sealed. CUPS also reads PPDs from /Library/Printers, and runs filters
# that a PPD names by their full path.
set(filter_dir "${CUPS_SERVERBIN}/filter")
set(ppd_dir "${CUPS_DATADIR}/model/zelva")
if(APPLE)
  set(filter_dir /Library/Printers/Zelva/Filters)
  set(ppd_dir /Library/Printers/PPDs/Contents/Resources)
endif()
foreach(kind filter ppd)
  string(TOUPPER ${kind} upper)
  set(PSTOXPJL_${upper}_DIR "" CACHE PATH "Folder to install ${kind}s into; empty: where CUPS looks")
  if(PSTOXPJL_${upper}_DIR)
    set(${kind}_dir "${PSTOXPJL_${upper}_DIR}")
  endif()
endforeach()
message(STATUS "CUPS: filter into ${filter_dir}, PPDs into ${ppd_dir}")

set(installed_ppds ${PSTOXPJL_PPDS})
if(NOT filter_dir STREQUAL "${CUPS_SERVERBIN}/filter")
  set(installed_ppds "")
  foreach(ppd IN LISTS PSTOXPJL_PPDS)
    cmake_path(GET ppd FILENAME name)
    set(installed "${PROJECT_BINARY_DIR}/installed-ppds/${name}")
    add_custom_command(OUTPUT ${installed}
      COMMAND ${CMAKE_COMMAND} -E make_directory "${PROJECT_BINARY_DIR}/installed-ppds"
      COMMAND sed "s|^\\(\\*cupsFilter:.* \\)cupstoxpjl\"|\\1${filter_dir}/cupstoxpjl\"|" ${ppd}
        > ${installed}
      DEPENDS ${ppd} VERBATIM)
    list(APPEND installed_ppds ${installed})
  endforeach()
  add_custom_target(installed_ppds ALL DEPENDS ${installed_ppds})
  add_dependencies(installed_ppds ppds)
endif()

# CUPS runs no filter that others may write to; this project's folders are for all to read, whatever the
# umask of who installs them.
set(open OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME runtime)
install(TARGETS pstoxpjl cupstoxpjl RUNTIME DESTINATION "${filter_dir}" PERMISSIONS ${open})
foreach(folder "${ppd_dir}" ${CMAKE_INSTALL_DOCDIR})
  if(folder MATCHES "/(zelva|pstoxpjl)$")
    install(DIRECTORY DESTINATION "${folder}" DIRECTORY_PERMISSIONS ${open})
  endif()
endforeach()
install(FILES ${installed_ppds} DESTINATION "${ppd_dir}")
foreach(tool xpjl-explain xpjl-inspect xpjl-password)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} PERMISSIONS ${open})
  endif()
endforeach()
foreach(section 1 8)
  file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/man/*.${section}")
  if(pages)
    install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
  endif()
endforeach()

# CUPS would list every model twice if it found both the PPDs and the file they are made of.
install(DIRECTORY ppd/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples DIRECTORY_PERMISSIONS ${open}
  PATTERN CMakeLists.txt EXCLUDE)
install(FILES README.md SECURITY.md CHANGES.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
include(packaging/Contents.cmake)
install(FILES "${PROJECT_BINARY_DIR}/pstoxpjl.spdx" DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.schema.json")
install(FILES deployment/demo/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/deployment/demo)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT license)

# Behind everything else that an installation prints.
if(PSTOXPJL_DEPLOYMENT_NOTICE)
  install(CODE "message(NOTICE [[${PSTOXPJL_DEPLOYMENT_NOTICE}]])")
endif()

configure_file("${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake.in"
  "${PROJECT_BINARY_DIR}/Uninstall.cmake" @ONLY)
add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -P "${PROJECT_BINARY_DIR}/Uninstall.cmake" VERBATIM)

include(packaging/Package.cmake)
