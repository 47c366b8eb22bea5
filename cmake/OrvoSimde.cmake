# Pairs of doubles are part of the interface. The compilers for x86 have them; elsewhere the headers
# of SIMDe supply them, for this build and for every program that uses the library.
#
# ORVO_NEEDS_SIMDE says whether this is such a place. There, the target Orvo::Simde has the headers.

include(CheckCXXSourceCompiles)
check_cxx_source_compiles(
  "#if !defined(__SSE2__) && !defined(_M_X64)
#error no pairs of doubles
#endif
int main() { return 0; }"
  ORVO_HAS_SSE2)

set(ORVO_NEEDS_SIMDE OFF)
if(NOT ORVO_HAS_SSE2)
  set(ORVO_NEEDS_SIMDE ON)
  find_path(ORVO_SIMDE_INCLUDE_DIR simde/x86/sse2.h REQUIRED DOC "Folder of the headers of SIMDe")
  mark_as_advanced(ORVO_SIMDE_INCLUDE_DIR)
  add_library(Orvo::Simde INTERFACE IMPORTED GLOBAL)
  set_target_properties(Orvo::Simde PROPERTIES INTERFACE_INCLUDE_DIRECTORIES
                                               ${ORVO_SIMDE_INCLUDE_DIR})
  target_link_libraries(orvo_flags INTERFACE Orvo::Simde)
endif()
