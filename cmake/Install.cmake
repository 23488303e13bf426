# SPDX-License-Identifier: Apache-2.0
# Data that ships, and what `cmake --install` puts where. The library finds its data from its own
# place (<libdir>/../share/mav), so an installed tree may be moved as a whole.
include(CMakePackageConfigHelpers)

cmake_path(SET MAV_DATA_DIR NORMALIZE "${CMAKE_INSTALL_LIBDIR}/../share/mav")
set(MAV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/MavPlatform)

file(GLOB_RECURSE MAV_SHARE_FILES CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}/platform/share
  ${CMAKE_SOURCE_DIR}/platform/share/*)
set(MAV_SHARE_COPIES)
foreach(file IN LISTS MAV_SHARE_FILES)
  set(copy ${CMAKE_BINARY_DIR}/share/mav/${file})
  add_custom_command(OUTPUT ${copy} DEPENDS ${CMAKE_SOURCE_DIR}/platform/share/${file}
    COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/platform/share/${file} ${copy})
  list(APPEND MAV_SHARE_COPIES ${copy})
endforeach()
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/share/mav)
add_custom_target(mav_share ALL DEPENDS ${MAV_SHARE_COPIES})
add_dependencies(mav_platform mav_share)

# Three components: the library with its data, what clients are built with, and the command. A plain
# installation has the command that holds the library (component whole), packages the other one.
install(TARGETS mav_platform EXPORT MavPlatformTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
if(TARGET mav_help)
  install(TARGETS mav RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT whole)
  install(TARGETS mav_packaged RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command
    EXCLUDE_FROM_ALL)
  install(DIRECTORY ${MAV_HELP_DIR}/man1 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT command)
  install(FILES ${MAV_HELP_DIR}/mav.bash RENAME mav COMPONENT command
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${MAV_HELP_DIR}/mav.zsh RENAME _mav COMPONENT command
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(FILES ${MAV_HELP_DIR}/mav.fish COMPONENT command
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(DIRECTORY host/include/mav_host platform/include/mav_platform
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/mav/ DESTINATION ${MAV_DATA_DIR} COMPONENT library
  PATTERN samples EXCLUDE)
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/mav/samples DESTINATION ${MAV_DATA_DIR}
  COMPONENT development OPTIONAL)
install(DIRECTORY platform/schema/ DESTINATION ${CMAKE_INSTALL_DATADIR}/mav_platform/schema
  COMPONENT development FILES_MATCHING PATTERN "*.xsd" PATTERN "*.schema.json")
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/mav COMPONENT command
  FILES_MATCHING PATTERN "*.md")
install(FILES LICENSE THIRD_PARTY_NOTICES DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)

install(EXPORT MavPlatformTargets NAMESPACE MavPlatform:: DESTINATION ${MAV_PACKAGE_DIR}
  COMPONENT development)
configure_package_config_file(cmake/MavPlatformConfig.cmake.in
  ${CMAKE_BINARY_DIR}/MavPlatformConfig.cmake INSTALL_DESTINATION ${MAV_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/MavPlatformConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/MavPlatformConfig.cmake
  ${CMAKE_BINARY_DIR}/MavPlatformConfigVersion.cmake DESTINATION ${MAV_PACKAGE_DIR}
  COMPONENT development)

# The way from the .pc file back to the prefix, so that pkg-config follows a moved tree.
file(RELATIVE_PATH MAV_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" MAV_PC_TO_PREFIX "${MAV_PC_TO_PREFIX}")
configure_file(cmake/mav-platform.pc.in ${CMAKE_BINARY_DIR}/mav-platform.pc @ONLY)
configure_file(cmake/mav-platform-cxx.pc.in ${CMAKE_BINARY_DIR}/mav-platform-cxx.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/mav-platform.pc ${CMAKE_BINARY_DIR}/mav-platform-cxx.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

include(cmake/Package.cmake)
