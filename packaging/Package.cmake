# The Debian package: `cmake --build build/release --target package`.

set(PSTOXPJL_PACKAGE_MAINTAINER "pstoxpjl maintainers <pstoxpjl@packages.invalid>" CACHE STRING
  "Whom the package names as its maintainer")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${PSTOXPJL_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_VENDOR "pstoxpjl")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "printer driver for Zelva office and production printers")
set(CPACK_PACKAGE_DESCRIPTION "CUPS filters and PPDs for Zelva PostScript printers:
accounting, secure and delayed print, colour, finishing, booklets,
perfect binding, special pages and watermarks.
.
The queue filter cupstoxpjl takes PDF, text and PostScript with the options
of dialogs, lp and phones, queue defaults and standard attributes included.
.
The package also holds xpjl-inspect, which says in words what a job asks
a printer to do, xpjl-explain, which says why an option has no effect, and
xpjl-password, which prepares a password for use in job options.")
if(PSTOXPJL_DEPLOYMENT_IS_DEMONSTRATION)
  string(APPEND CPACK_PACKAGE_DESCRIPTION "
.
This build is for demonstration: it seals passwords for a public key. No
real device opens them, and everybody else can.")
endif()
set(CPACK_STRIP_FILES ON)
# CUPS's folders are absolute; they and the prefix are staged below the package's own root.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
# The debian component compresses what the runtime component has put there.
set(CPACK_INSTALL_CMAKE_PROJECTS
  "${PROJECT_BINARY_DIR};${PROJECT_NAME};runtime;/;${PROJECT_BINARY_DIR};${PROJECT_NAME};debian;/")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "cups (>= 2.2)")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ghostscript")
include(CPack)

set(doc usr/share/doc/${PROJECT_NAME})
install(FILES packaging/debian/copyright DESTINATION /${doc} COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES "${PROJECT_BINARY_DIR}/changelog.Debian" DESTINATION /${doc}
  COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES packaging/debian/lintian-overrides RENAME ${PROJECT_NAME}
  DESTINATION /usr/share/lintian/overrides COMPONENT debian EXCLUDE_FROM_ALL)
# cups gives the queues of a driver its new PPDs when the driver's file in this folder has changed.
install(FILES packaging/debian/ppd-updater RENAME ${PROJECT_NAME}.ppd-updater
  DESTINATION "${CUPS_DATADIR}/ppd-updaters" COMPONENT debian EXCLUDE_FROM_ALL)
install(CODE "
  file(TOUCH \"\$ENV{DESTDIR}${CUPS_DATADIR}/ppd-updaters/${PROJECT_NAME}.ppd-updater\")
  file(GLOB pages \"\$ENV{DESTDIR}/usr/share/man/man*/*.[18]\")
  execute_process(COMMAND gzip -9nf \"\$ENV{DESTDIR}/${doc}/changelog.Debian\" \${pages}
    COMMAND_ERROR_IS_FATAL ANY)" COMPONENT debian EXCLUDE_FROM_ALL)

if(BUILD_TESTING AND NOT PSTOXPJL_SANITIZE)
  find_program(LINTIAN lintian)
  find_program(SHLIBDEPS dpkg-shlibdeps)
  mark_as_advanced(LINTIAN SHLIBDEPS)
  set(folder "${PROJECT_BINARY_DIR}/package-test")
  if(LINTIAN AND SHLIBDEPS)
    add_test(NAME package.lintian COMMAND sh -c
      "rm -rf \"$1\" && \"$0\" -G DEB -B \"$1\" && lintian --allow-root --fail-on error \"$1\"/*.deb"
      ${CMAKE_CPACK_COMMAND} "${folder}")
  else()
    add_test(NAME package.lintian COMMAND ${CMAKE_COMMAND} -E echo
      "Skipped, no package was built: lintian or dpkg-dev is not installed")
    set_tests_properties(package.lintian PROPERTIES SKIP_REGULAR_EXPRESSION "Skipped,")
  endif()
  # Both write the list of installed files.
  set_tests_properties(package.lintian PROPERTIES RESOURCE_LOCK install_manifest)
endif()
