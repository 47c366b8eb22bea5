# What `cmake --install` lays down: the library, its headers, the CMake package Orvo and the
# pkg-config module orvo. All paths in them are relative, so the tree can be moved afterwards. The
# components are those of the Debian packages.

include(CMakePackageConfigHelpers)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orvo)

install(
  TARGETS orvo
  EXPORT OrvoTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT runtime
          NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(
  DIRECTORY ${PROJECT_SOURCE_DIR}/include/Orvo ${PROJECT_BINARY_DIR}/include/Orvo
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development
  FILES_MATCHING
  PATTERN "*.h")
if(TARGET orvo_path)
  install(
    TARGETS orvo_path
    EXPORT OrvoTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT runtime
            NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(
    DIRECTORY ${PROJECT_SOURCE_DIR}/path/include/Orvo
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)
endif()
if(TARGET orvo_exchange)
  install(
    TARGETS orvo_exchange
    EXPORT OrvoTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT runtime
            NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(
    DIRECTORY ${PROJECT_SOURCE_DIR}/exchange/include/Orvo
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)
endif()
install(
  EXPORT OrvoTargets
  NAMESPACE Orvo::
  DESTINATION ${config_dir}
  COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrvoConfig.cmake.in OrvoConfig.cmake
                              INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(OrvoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/OrvoConfig.cmake
        ${CMAKE_CURRENT_BINARY_DIR}/OrvoConfigVersion.cmake
  DESTINATION ${config_dir}
  COMPONENT development)

# The module's prefix is where its file lies, some levels up: the number of levels depends on the
# name of the library folder.
file(RELATIVE_PATH ORVO_PC_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" ORVO_PC_PREFIX "${ORVO_PC_PREFIX}")
if(BUILD_SHARED_LIBS)
  set(ORVO_PC_REQUIRES_PRIVATE "")
  set(ORVO_PC_CFLAGS "")
  set(ORVO_PC_LIBS_PRIVATE "")
else()
  set(ORVO_PC_REQUIRES_PRIVATE "tinyxml2")
  set(ORVO_PC_CFLAGS " -DORVO_STATIC")
  set(ORVO_PC_LIBS_PRIVATE "-lstdc++")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvo.pc.in orvo.pc @ONLY)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/orvo.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
