# One step of the package tests: cmake -DSTEP=... -D... -P PackageTest.cmake
#
# * install: installs the build tree BUILD_DIR and moves the result to PREFIX
# * build: configures SOURCE_DIR in BUILD_DIR with OPTIONS, builds, installs to PREFIX
# * inspect: checks what lies in PREFIX
# * find_package: builds and runs the consumer against PREFIX in the language version STANDARD
# * pkg_config: the same by COMPILER alone, with what pkg-config says to PKG_CONFIG_FLAGS; the
#   module must ask for REQUIRES_PRIVATE
# * add_subdirectory, fetch_content: builds and runs a project that has SOURCE_DIR as a folder, or
#   fetches it, with OPTIONS; with SPACES, by a path with spaces in its name
#
# The last four work in WORK_DIR. OPTIONS are separated by spaces.

cmake_minimum_required(VERSION 3.25)

# Runs a command; its output is shown, and the test fails, when the command fails.
function(run)
  execute_process(
    COMMAND ${ARGV}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
endfunction()

# Runs a consumer in WORK_DIR and compares its output.
function(check_consumer program)
  execute_process(
    COMMAND ${program}
    WORKING_DIRECTORY ${WORK_DIR}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE error)
  file(READ ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/expected.txt expected)
  if(NOT result EQUAL 0 OR NOT output STREQUAL expected)
    message(FATAL_ERROR "${program} ended with ${result} and printed\n${output}${error}\n"
                        "where this was expected:\n${expected}")
  endif()
endfunction()

# The folder of the libraries in PREFIX.
function(find_library_dir out)
  file(GLOB_RECURSE libraries ${PREFIX}/liborvo.*)
  list(LENGTH libraries count)
  if(count EQUAL 0)
    message(FATAL_ERROR "no liborvo below ${PREFIX}")
  endif()
  list(GET libraries 0 library)
  get_filename_component(directory ${library} DIRECTORY)
  set(${out}
      ${directory}
      PARENT_SCOPE)
endfunction()

separate_arguments(OPTIONS UNIX_COMMAND "${OPTIONS}")

if(STEP STREQUAL "install")
  # A tree that was moved after the installation holds no path that still points to itself.
  set(staging ${BUILD_DIR}/package_staging)
  file(REMOVE_RECURSE ${staging} ${PREFIX})
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${staging})
  get_filename_component(parent ${PREFIX} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(RENAME ${staging} ${PREFIX})

elseif(STEP STREQUAL "build")
  file(REMOVE_RECURSE ${PREFIX})
  run(${CMAKE_COMMAND}
      -S
      ${SOURCE_DIR}
      -B
      ${BUILD_DIR}
      -G
      ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${COMPILER}
      ${OPTIONS})
  run(${CMAKE_COMMAND} --build ${BUILD_DIR} --parallel 2)
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})

elseif(STEP STREQUAL "inspect")
  # The headers are the public ones, all of them.
  file(
    GLOB_RECURSE wanted
    RELATIVE ${SOURCE_DIR}/include
    ${SOURCE_DIR}/include/*)
  list(TRANSFORM wanted REPLACE "\\.in$" "")
  file(
    GLOB_RECURSE wanted_of_path
    RELATIVE ${SOURCE_DIR}/path/include
    ${SOURCE_DIR}/path/include/*)
  file(
    GLOB_RECURSE wanted_of_exchange
    RELATIVE ${SOURCE_DIR}/exchange/include
    ${SOURCE_DIR}/exchange/include/*)
  list(APPEND wanted ${wanted_of_path} ${wanted_of_exchange})
  file(
    GLOB_RECURSE found
    RELATIVE ${PREFIX}/include
    ${PREFIX}/include/*)
  list(SORT wanted)
  list(SORT found)
  if(NOT wanted STREQUAL found)
    message(FATAL_ERROR "installed headers:\n${found}\npublic headers:\n${wanted}")
  endif()
  # The made one says the project's version.
  file(STRINGS ${PREFIX}/include/Orvo/Version.h version REGEX "^#define ORVO_VERSION_STRING ")
  if(NOT version STREQUAL "#define ORVO_VERSION_STRING \"${VERSION}\"")
    message(FATAL_ERROR "Orvo/Version.h says ${version} and not ${VERSION}")
  endif()
  # No file names the folders where the library was built.
  file(GLOB_RECURSE texts ${PREFIX}/*.cmake ${PREFIX}/*.pc)
  list(LENGTH texts count)
  if(count LESS 4)
    message(FATAL_ERROR "only ${count} package files: ${texts}")
  endif()
  foreach(text ${texts})
    file(READ ${text} content)
    foreach(folder ${SOURCE_DIR} ${BUILD_DIR} ${PREFIX} package_staging)
      string(FIND "${content}" "${folder}" place)
      if(NOT place EQUAL -1)
        message(FATAL_ERROR "${text} names ${folder}")
      endif()
    endforeach()
  endforeach()

elseif(STEP STREQUAL "find_package")
  file(REMOVE_RECURSE ${WORK_DIR})
  run(${CMAKE_COMMAND}
      -S
      ${CMAKE_CURRENT_LIST_DIR}/consumer
      -B
      ${WORK_DIR}
      -G
      ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${COMPILER}
      -DCMAKE_PREFIX_PATH=${PREFIX}
      -DCONSUMER_STANDARD=${STANDARD}
      -DCONSUMER_WANTS_VERSION=${VERSION}
      -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
  run(${CMAKE_COMMAND} --build ${WORK_DIR})
  check_consumer(${WORK_DIR}/consumer)
  execute_process(COMMAND ${WORK_DIR}/path_consumer OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL
                                                                    ANY)
  if(NOT output STREQUAL "1 of 1 points\n")
    message(FATAL_ERROR "path_consumer printed ${output}")
  endif()
  execute_process(COMMAND ${WORK_DIR}/exchange_consumer OUTPUT_VARIABLE output
                                                                        COMMAND_ERROR_IS_FATAL ANY)
  if(NOT output STREQUAL "6 elements\n")
    message(FATAL_ERROR "exchange_consumer printed ${output}")
  endif()

elseif(STEP STREQUAL "pkg_config")
  file(REMOVE_RECURSE ${WORK_DIR})
  file(MAKE_DIRECTORY ${WORK_DIR})
  find_library_dir(library_dir)
  set(ENV{PKG_CONFIG_PATH} ${library_dir}/pkgconfig)
  execute_process(
    COMMAND pkg-config --modversion orvo
    OUTPUT_VARIABLE version
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT version STREQUAL VERSION)
    message(FATAL_ERROR "pkg-config says ${version} and not ${VERSION}")
  endif()
  execute_process(
    COMMAND pkg-config --print-requires-private orvo
    OUTPUT_VARIABLE requires_private
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT requires_private STREQUAL "${REQUIRES_PRIVATE}")
    message(FATAL_ERROR "the module asks for '${requires_private}' and not '${REQUIRES_PRIVATE}'")
  endif()
  execute_process(COMMAND pkg-config ${PKG_CONFIG_FLAGS} --cflags --libs orvo
                  OUTPUT_VARIABLE flags COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${COMPILER}
      -std=c++${STANDARD}
      ${CMAKE_CURRENT_LIST_DIR}/consumer/Main.cpp
      -o
      ${WORK_DIR}/consumer
      ${flags}
      -Wl,-rpath,${library_dir})
  check_consumer(${WORK_DIR}/consumer)

elseif(STEP MATCHES "^(add_subdirectory|fetch_content)$")
  file(REMOVE_RECURSE ${WORK_DIR})
  if(SPACES)
    file(MAKE_DIRECTORY ${WORK_DIR})
    file(CREATE_LINK ${SOURCE_DIR} "${WORK_DIR}/a folder of sources" SYMBOLIC)
    set(SOURCE_DIR "${WORK_DIR}/a folder of sources")
    set(WORK_DIR "${WORK_DIR}/a folder of objects")
  endif()
  run(${CMAKE_COMMAND}
      -S
      ${CMAKE_CURRENT_LIST_DIR}/${STEP}
      -B
      ${WORK_DIR}
      -G
      ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${COMPILER}
      -DORVO_SOURCE_DIR=${SOURCE_DIR}
      ${OPTIONS})
  run(${CMAKE_COMMAND} --build ${WORK_DIR} --parallel 2)
  check_consumer(${WORK_DIR}/consumer)
  run(${CMAKE_COMMAND} --install ${WORK_DIR} --prefix ${WORK_DIR}/installed)
  file(
    GLOB_RECURSE installed
    RELATIVE ${WORK_DIR}/installed
    ${WORK_DIR}/installed/*)
  if(NOT installed STREQUAL "bin/consumer")
    message(FATAL_ERROR "installing the holder installed: ${installed}")
  endif()

else()
  message(FATAL_ERROR "no step '${STEP}'")
endif()
