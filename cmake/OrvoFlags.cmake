# The compile flags of this project's own code. They stay with it: nothing here reaches a consumer.

add_library(orvo_flags INTERFACE)
target_compile_features(orvo_flags INTERFACE cxx_std_20)

# Results are the same bits on every compiler: no fused multiply-add, no reordering.
target_compile_options(
  orvo_flags INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off>
                       $<$<CXX_COMPILER_ID:MSVC>:/fp:precise /utf-8>)

# Exported functions of the library call each other directly; nothing shall replace them from
# outside.
target_compile_options(orvo_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)

target_compile_options(
  orvo_flags
  INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wsign-conversion
            -Wnon-virtual-dtor
            -Wold-style-cast
            -Wcast-align>
            $<$<CXX_COMPILER_ID:MSVC>:/W4>)
# g++ 12 warns without reason of overlapping copies where std::string is optimized.
target_compile_options(
  orvo_flags
  INTERFACE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
if(ORVO_WARNINGS_AS_ERRORS)
  target_compile_options(orvo_flags INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Werror>
                                              $<$<CXX_COMPILER_ID:MSVC>:/WX>)
endif()

# What ships checks its stack and the buffers whose sizes the compiler knows, and lets nobody write
# to its tables of addresses. Optimized builds only, as the checks of buffers need it; sanitizers
# look closer and come without.
if(ORVO_HARDEN
   AND CMAKE_SYSTEM_NAME STREQUAL "Linux"
   AND NOT ORVO_SANITIZE
   AND NOT ORVO_COVERAGE)
  set(optimized $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(
    orvo_flags INTERFACE $<${optimized}:-fstack-protector-strong> $<${optimized}:-U_FORTIFY_SOURCE>
                         $<${optimized}:-D_FORTIFY_SOURCE=3>)
  target_link_options(orvo_flags INTERFACE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()

if(ORVO_SANITIZE)
  target_compile_options(orvo_flags INTERFACE -fsanitize=${ORVO_SANITIZE} -fno-sanitize-recover=all
                                              -fno-omit-frame-pointer)
  target_link_options(orvo_flags INTERFACE -fsanitize=${ORVO_SANITIZE})
endif()
if(ORVO_COVERAGE)
  target_compile_options(orvo_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(orvo_flags INTERFACE --coverage)
endif()
