# SPDX-License-Identifier: Apache-2.0
# `cpack` makes Debian packages from the components of Install.cmake: the library with its data, what
# clients are built with, the command, and the Python and Java packages.
set(MAV_LIBRARY_PACKAGE libmav-platform${PROJECT_VERSION_MAJOR})
set(MAV_DEVELOPMENT_PACKAGE libmav-platform-dev)
set(MAV_COMMAND_PACKAGE mav)
set(MAV_PYTHON_PACKAGE python3-mav-platform)
set(components library development command)
if(TARGET mav_python)
  list(APPEND components python)
endif()
set(MAV_JAVA_PACKAGE libmav-platform-java)
if(TARGET mav_java)
  list(APPEND components java)
endif()

# Debian wants the licence in a folder named like the package; a plain install has it once.
foreach(component IN LISTS components)
  string(TOUPPER ${component} upper)
  install(FILES LICENSE RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${MAV_${upper}_PACKAGE})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${MAV_${upper}_PACKAGE})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME mav-platform)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The platform library's maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Only the library is measured for what it links; the command links it and what it links itself.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${CMAKE_SOURCE_DIR}/cmake/debian/postinst ${CMAKE_SOURCE_DIR}/cmake/debian/postrm)
# Nobody of the building machine owns what is installed.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(exactly "${MAV_LIBRARY_PACKAGE} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${exactly}, libboost-dev (>= 1.74)")
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "${exactly}")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${exactly}, python3 (>= 3.11)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/cmake/debian/python/postinst
  ${CMAKE_SOURCE_DIR}/cmake/debian/python/prerm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_JAVA_PACKAGE_DEPENDS
  "${exactly}, default-jre-headless (>= 2:1.17) | java17-runtime-headless")
set(CPACK_DEBIAN_JAVA_PACKAGE_SECTION java)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "platform library of the accelerated-application toolchain
 Reads, describes and makes the archives and descriptions of platforms.
 This package holds the shared library and the data that it ships.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "platform library, files for building clients
 Headers, CMake and pkg-config files, schemas of the file formats and
 sample platforms.")
set(CPACK_COMPONENT_COMMAND_DESCRIPTION "shows, checks and makes accelerator platforms
 The mav command with its manual pages and shell completion.")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "platform library, Python package
 Typed views of platforms, questions to them, validation and archives.")
set(CPACK_COMPONENT_JAVA_DESCRIPTION "platform library, Java package
 The classes of the library as org.mavplatform, for Java 17 and newer, with
 their documentation.")
include(CPack)
