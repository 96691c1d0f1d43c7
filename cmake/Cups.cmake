# Finds libcups and the folders where CUPS looks for filters and PPDs. In this order: a -D override,
# pkg-config (newer CUPS), cups-config (CUPS 2.4 and older), the platform's default. Gives the target
# cups::cups and the variables CUPS_SERVERBIN and CUPS_DATADIR. The cache holds nothing but the
# overrides, so that each configuration asks anew.

set(PSTOXPJL_CUPS_CFLAGS "" CACHE STRING "Compiler flags for libcups; empty: found out")
set(PSTOXPJL_CUPS_LIBS "" CACHE STRING "Linker flags for libcups; empty: found out")
set(PSTOXPJL_CUPS_SERVERBIN "" CACHE PATH "Folder above CUPS's filter folder; empty: found out")
set(PSTOXPJL_CUPS_DATADIR "" CACHE PATH "Folder above CUPS's model folder; empty: found out")

find_package(PkgConfig QUIET)
find_program(CUPS_CONFIG cups-config)
mark_as_advanced(CUPS_CONFIG)
if(PKG_CONFIG_FOUND)
  pkg_check_modules(CUPS_PC QUIET cups)
endif()

# cups_setting(<result> <override> <pkg-config answer> <cups-config option> <default>)
function(cups_setting result override from_pkg_config option default)
  set(value "${override}")
  if(value STREQUAL "" AND CUPS_PC_FOUND)
    set(value "${from_pkg_config}")
  endif()
  if(value STREQUAL "" AND CUPS_CONFIG)
    execute_process(COMMAND ${CUPS_CONFIG} ${option} OUTPUT_VARIABLE value
      OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  endif()
  if(value STREQUAL "")
    set(value "${default}")
  endif()
  set(${result} "${value}" PARENT_SCOPE)
endfunction()

if(CUPS_PC_FOUND)
  pkg_get_variable(CUPS_PC_SERVERBIN cups cups_serverbin)
  pkg_get_variable(CUPS_PC_DATADIR cups cups_datadir)
  list(JOIN CUPS_PC_CFLAGS " " CUPS_PC_CFLAGS)
  list(JOIN CUPS_PC_LDFLAGS " " CUPS_PC_LDFLAGS)
endif()
if(APPLE)
  set(default_serverbin /usr/libexec/cups)
else()
  set(default_serverbin /usr/lib/cups)
endif()
cups_setting(cups_cflags "${PSTOXPJL_CUPS_CFLAGS}" "${CUPS_PC_CFLAGS}" --cflags "")
cups_setting(cups_libs "${PSTOXPJL_CUPS_LIBS}" "${CUPS_PC_LDFLAGS}" --libs "-lcups")
cups_setting(CUPS_SERVERBIN "${PSTOXPJL_CUPS_SERVERBIN}" "${CUPS_PC_SERVERBIN}" --serverbin
  ${default_serverbin})
cups_setting(CUPS_VERSION "" "${CUPS_PC_VERSION}" --version "")
cups_setting(CUPS_DATADIR "${PSTOXPJL_CUPS_DATADIR}" "${CUPS_PC_DATADIR}" --datadir
  /usr/share/cups)

separate_arguments(cups_cflags)
separate_arguments(cups_libs)
# cups-config on some systems answers with every library that libcups itself was linked with.
list(FILTER cups_libs INCLUDE REGEX "^-L|^-lcups$|^-Wl|^-framework|^/")
add_library(cups::cups INTERFACE IMPORTED)
set_target_properties(cups::cups PROPERTIES
  INTERFACE_COMPILE_OPTIONS "${cups_cflags}" INTERFACE_LINK_LIBRARIES "${cups_libs}")

include(CheckCXXSourceCompiles)
set(CMAKE_REQUIRED_LIBRARIES cups::cups)
check_cxx_source_compiles("#include <cups/ppd.h>
int main() { return ppdOpenFile(nullptr) != nullptr; }" PSTOXPJL_HAVE_LIBCUPS)
unset(CMAKE_REQUIRED_LIBRARIES)
if(NOT PSTOXPJL_HAVE_LIBCUPS)
  message(FATAL_ERROR "libcups with its PPD interface was not found. Debian: apt install "
    "libcups2-dev. Elsewhere: set PSTOXPJL_CUPS_CFLAGS and PSTOXPJL_CUPS_LIBS.")
endif()
