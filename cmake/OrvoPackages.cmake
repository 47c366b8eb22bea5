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
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
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
execute_process(COMMAND ${gzip} -9nc ${PROJECT_SOURCE_DIR}/packaging/orvo.1
                OUTPUT_FILE ${packaging}/orvo.1.gz COMMAND_ERROR_IS_FATAL ANY)
install(
  FILES ${packaging}/orvo.1.gz
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
  COMPONENT tools)

include(CPack)
