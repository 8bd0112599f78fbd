# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` installs, by component:
#   runtime      the library
#   development  header, schemas, and what find_package() and pkg-config read
#   tools        the simulator and the platform's stand-in
# Everything is found relative to these files, so that the prefix can be moved.
include(CMakePackageConfigHelpers)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/murlink-robot)

install(TARGETS murlink_robot EXPORT murlink-robotTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS murlink_platform EXPORT murlink-platformTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT tools NAMELINK_SKIP)
if(MURLINK_BUILD_SIMULATOR)
  install(TARGETS murlink-simulator
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()

if(MURLINK_NOTICE)
  install(FILES ${MURLINK_NOTICE} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
endif()

install(FILES include/murlink_robot.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(FILES proto/Quarlo_Platform.proto proto/Quarlo_RB_Server.proto proto/Quarlo_TV_Server.proto
  DESTINATION ${CMAKE_INSTALL_DATADIR}/murlink-robot/proto COMPONENT development)

# Two sets of targets: a device's image has no stand-in.
install(EXPORT murlink-robotTargets NAMESPACE murlink::
  DESTINATION ${cmake_dir} COMPONENT development)
install(EXPORT murlink-platformTargets NAMESPACE murlink::
  DESTINATION ${cmake_dir} COMPONENT tools)
configure_package_config_file(cmake/murlink-robotConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/murlink-robotConfig.cmake
  INSTALL_DESTINATION ${cmake_dir}
  NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/murlink-robotConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/murlink-robotConfig.cmake
        ${CMAKE_CURRENT_BINARY_DIR}/murlink-robotConfigVersion.cmake
  DESTINATION ${cmake_dir} COMPONENT development)

# From the folder of the .pc file to the prefix, whatever CMAKE_INSTALL_LIBDIR is.
file(RELATIVE_PATH to_prefix
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/murlink-robot.pc.in murlink-robot.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/murlink-robot.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
