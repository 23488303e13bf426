# SPDX-License-Identifier: Apache-2.0
# Boost is used through its headers alone, so nothing of it is linked.
find_package(Boost 1.74 REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(EXPAT REQUIRED IMPORTED_TARGET expat)
pkg_check_modules(SODIUM REQUIRED IMPORTED_TARGET libsodium)
pkg_check_modules(DEFLATE REQUIRED IMPORTED_TARGET libdeflate)

# What the shared library links: the distribution's libraries, so that their security updates reach
# it. MAV_LINK_STATIC takes the small ones in where their archives are installed; docs/dependencies.md
# says what each costs. libstdc++ goes first because most symbols that are looked up at load time are
# its own.
option(MAV_LINK_STATIC "Take small libraries into the shared library" OFF)
set(MAV_LINKED -lstdc++ PkgConfig::LIBZIP)
foreach(library EXPAT SODIUM DEFLATE)
  string(TOLOWER "lib${library}.a" archive)
  find_library(MAV_${library}_ARCHIVE NAMES ${archive})
  if(MAV_LINK_STATIC AND MAV_${library}_ARCHIVE)
    list(APPEND MAV_LINKED ${MAV_${library}_ARCHIVE})
  else()
    list(APPEND MAV_LINKED PkgConfig::${library})
  endif()
endforeach()
# The tests' Python modules are the system's packages, so its interpreter goes first.
if(EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python interpreter of the tests")
endif()
