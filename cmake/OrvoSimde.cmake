# Pairs of doubles are part of the interface. The compilers for x86 have them; elsewhere the headers of
# SIMDe supply them, for this build and for every program that uses the library.
#
# ORVO_NEEDS_SIMDE says whether this is such a place, ORVO_SIMDE_INCLUDE_DIR where the headers are.

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
  find_path(
    ORVO_SIMDE_INCLUDE_DIR simde/x86/sse2.h REQUIRED
    DOC "Folder of the headers of SIMDe")
  mark_as_advanced(ORVO_SIMDE_INCLUDE_DIR)
  target_include_directories(orvo_flags SYSTEM INTERFACE ${ORVO_SIMDE_INCLUDE_DIR})
endif()
