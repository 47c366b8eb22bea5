# Adds one subsystem to the library: its sources, and the packages that it alone may see.
#
# PACKAGES are linked into the library; HEADERS are packages of headers, needed to build only.
# Sources include public headers as <Orvo/...> and private ones from the project's root.
function(orvo_add_subsystem name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PACKAGES;HEADERS")
  add_library(orvo_${name} OBJECT ${arg_SOURCES})
  set_target_properties(
    orvo_${name}
    PROPERTIES POSITION_INDEPENDENT_CODE ON
               CXX_EXTENSIONS OFF
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(orvo_${name} PRIVATE ${PROJECT_SOURCE_DIR}/include
                                                  ${PROJECT_SOURCE_DIR})
  target_compile_definitions(
    orvo_${name} PRIVATE ORVO_BUILDING $<$<NOT:$<BOOL:${BUILD_SHARED_LIBS}>>:ORVO_STATIC>)
  target_link_libraries(orvo_${name} PRIVATE orvo_flags ${arg_PACKAGES} ${arg_HEADERS})
  target_sources(orvo PRIVATE $<TARGET_OBJECTS:orvo_${name}>)
  target_link_libraries(orvo PRIVATE ${arg_PACKAGES})
endfunction()
