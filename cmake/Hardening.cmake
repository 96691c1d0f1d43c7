# Turns faults that would otherwise overwrite memory into the end of the process: bounds checks in the C
# library's functions, guards on the stack, addresses that cannot be foretold, tables of addresses that
# cannot be written. In optimised builds; the sanitizers bring checks of their own.

option(PSTOXPJL_HARDENING "Harden optimised builds" ON)
if(NOT PSTOXPJL_HARDENING OR PSTOXPJL_SANITIZE)
  return()
endif()

include(CheckCXXCompilerFlag)
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  string(MAKE_C_IDENTIFIER "PSTOXPJL_HAS${flag}" has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    add_compile_options(${flag})
  endif()
endforeach()
# Some compilers define it themselves, at a lower level.
add_compile_options("$<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
# Everything here goes into programs. macOS does as much without being asked.
if(NOT APPLE)
  add_compile_options(-fPIE)
  add_link_options(-pie -Wl,-z,relro,-z,now)
endif()
