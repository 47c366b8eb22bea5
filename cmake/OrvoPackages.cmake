# The Debian packages liborvo1, liborvo-dev and orvo-tools, made by `cpack` in a build with the
# preset "package"; scripts/packages.sh does both.

set(debian_release 1)
set(debian_version ${PROJECT_VERSION}-${debian_release})
set(runtime_package liborvo${PROJECT_VERSION_MAJOR})
set(packaging ${PROJECT_BINARY_DIR}/packaging)

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_NAME orvo)
set(CPACK_PACKAGE_VENDOR Orvo)
set(CPACK_PACKAGE_CONTACT
    "Orvo developers <developers@orvo.invalid>"
    CACHE STRING "Who maintains the packages: a name and an address")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ
    OWNER_WRITE
    OWNER_EXECUTE
    GROUP_READ
    GROUP_EXECUTE
    WORLD_READ
    WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${debian_release})
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/path
                                                ${PROJECT_BINARY_DIR}/exchange)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "kinematics of multi-axis machine tools - shared library\n\
Models a machine tool as a tree of axes, heads and tables: where every element\n\
stands for given axis values, which rotary angles point the tool along a\n\
direction, and which linear values bring its tip to a point.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers
                                               ${packaging}/shlibs)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvo-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime_package} (= ${debian_version})")
if(ORVO_NEEDS_SIMDE)
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", libsimde-dev")
endif()
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "kinematics of multi-axis machine tools - development files\n\
The headers of liborvo, and what CMake and pkg-config need to know of it.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orvo-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} (= ${debian_version})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
    "kinematics of multi-axis machine tools - command line\n\
The program orvo shows what a machine file holds and turns tool paths into\n\
axis values.")

# What Debian wants of every package: its license, and a changelog of its own.
find_program(gzip gzip REQUIRED)
mark_as_advanced(gzip)
file(WRITE ${packaging}/shlibs "")
foreach(library liborvo liborvo-path liborvo-exchange)
  file(APPEND ${packaging}/shlibs
       "${library} ${PROJECT_VERSION_MAJOR} ${runtime_package} (>= ${PROJECT_VERSION})\n")
endforeach()
foreach(component runtime development tools)
  string(TOUPPER ${component} name)
  set(package ${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  set(folder ${packaging}/${package})
  configure_file(packaging/changelog.in ${folder}/changelog.Debian @ONLY)
  execute_process(COMMAND ${gzip} -9nf ${folder}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
  install(
    FILES ${folder}/changelog.Debian.gz packaging/copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
    COMPONENT ${component})
endforeach()

# The manual pages come from the program's help, one for each command, where help2man is there and
# the program runs here; else there is the short one.
find_program(help2man help2man)
mark_as_advanced(help2man)
set(ORVO_MAN_PAGES_DEFAULT OFF)
if(help2man AND NOT CMAKE_CROSSCOMPILING)
  set(ORVO_MAN_PAGES_DEFAULT ON)
endif()
option(ORVO_BUILD_MAN_PAGES "Make the manual pages out of the program's help (needs help2man)"
       ${ORVO_MAN_PAGES_DEFAULT})
if(ORVO_BUILD_MAN_PAGES)
  add_custom_command(
    OUTPUT ${packaging}/man/orvo.1.gz
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${packaging}/man
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/man-pages.sh $<TARGET_FILE:orvo_tool> ${packaging}/man
    COMMAND ${gzip} -9nr ${packaging}/man
    DEPENDS orvo_tool ${PROJECT_SOURCE_DIR}/scripts/man-pages.sh
    COMMENT "Making the manual pages"
    VERBATIM)
  add_custom_target(orvo_man ALL DEPENDS ${packaging}/man/orvo.1.gz)
else()
  file(MAKE_DIRECTORY ${packaging}/man)
  execute_process(COMMAND ${gzip} -9nc ${PROJECT_SOURCE_DIR}/packaging/orvo.1
                  OUTPUT_FILE ${packaging}/man/orvo.1.gz COMMAND_ERROR_IS_FATAL ANY)
endif()
install(
  DIRECTORY ${packaging}/man/
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
  COMPONENT tools)

include(CPack)
