# Runs PROGRAM, a command and its first arguments, with the folder WORK_DIR as its last argument,
# and compares what it prints with the file EXPECTED.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
execute_process(
  COMMAND ${PROGRAM} ${WORK_DIR}
  OUTPUT_VARIABLE output
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ends with ${result}")
endif()
file(READ ${EXPECTED} expected)
string(REPLACE "\r\n" "\n" output "${output}")
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "The output is\n${output}\nand should be\n${expected}")
endif()
