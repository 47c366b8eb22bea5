# Adds one test program. PRIVATE programs may include private headers and link the library's own
# objects as an archive; the others link the library that ships. EXAMPLES lets the program find
# examples/ in ORVO_EXAMPLES_DIR. Each of its tests becomes a test of CTest; in a build for another
# platform the program is one test.
function(orvo_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "PRIVATE" "" "SOURCES;LIBRARIES")
  add_executable(${name} ${arg_SOURCES})
  if(arg_PRIVATE)
    target_link_libraries(${name} PRIVATE orvo_testing)
  else()
    target_link_libraries(${name} PRIVATE Orvo::Orvo)
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE ORVO_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples"
                                             ORVO_TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data")
  target_link_libraries(${name} PRIVATE orvo_flags GTest::gmock GTest::gtest_main ${arg_LIBRARIES})
  if(CMAKE_CROSSCOMPILING)
    # Under an emulator the start of a program takes longer than most tests: one start for all.
    add_test(NAME ${name} COMMAND ${name})
    # Of the random cases it runs some only.
    set_tests_properties(${name} PROPERTIES TIMEOUT 1800 ENVIRONMENT ORVO_TEST_CASES=4)
  else()
    gtest_discover_tests(
      ${name}
      DISCOVERY_MODE PRE_TEST
      DISCOVERY_TIMEOUT 120
      PROPERTIES TIMEOUT 900)
  endif()
endfunction()
