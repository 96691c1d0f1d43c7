# Whether a function can be compiled twice, the second time for processors with wider vectors, with the
# choice made when the program is loaded. Gives the variable wider_vectors: the attribute, or nothing.
# The sanitizers do not go together with choices that early.

include(CheckCXXSourceCompiles)
set(wider_vectors "__attribute__((target_clones(\"default\",\"avx2\")))")
check_cxx_source_compiles("${wider_vectors} int f(int i) { return i; }
int main(int argc, char**) { return f(argc); }" PSTOXPJL_HAVE_WIDER_VECTORS)
if(PSTOXPJL_SANITIZE OR NOT PSTOXPJL_HAVE_WIDER_VECTORS)
  set(wider_vectors "")
endif()
