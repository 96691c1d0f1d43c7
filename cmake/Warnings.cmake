# The warnings every target of the project is built with, and the switches of the sanitize preset.

option(PSTOXPJL_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(PSTOXPJL_FUZZ "Build the fuzzers (clang only)" OFF)
option(PSTOXPJL_WERROR "Treat warnings as errors" OFF)

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wformat=2 -Wold-style-cast
  -Wcast-qual -Wundef -Wunused -Wnon-virtual-dtor -Wimplicit-fallthrough
  # libcups marks its PPD interface deprecated; it is the interface a filter is given a PPD for.
  -Wno-deprecated-declarations
  # GCC 12 sees overlaps in the library's own std::string.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(PSTOXPJL_WERROR)
  target_compile_options(project_warnings INTERFACE -Werror)
endif()

if(PSTOXPJL_SANITIZE)
  # Instrumented, GCC 12 takes the library's own std::function for uninitialised.
  target_compile_options(project_warnings INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(PSTOXPJL_FUZZ)
  # Code built for coverage feedback; each fuzzer links libFuzzer's own main.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Printed numbers must not depend on whether the processor can multiply and add in one step.
add_compile_options(-ffp-contract=off)
