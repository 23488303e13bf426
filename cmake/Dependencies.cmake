# SPDX-License-Identifier: Apache-2.0
# Boost is used through its headers alone, so nothing of it is linked.
find_package(Boost 1.74 REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(EXPAT REQUIRED IMPORTED_TARGET expat)
pkg_check_modules(SODIUM REQUIRED IMPORTED_TARGET libsodium)
pkg_check_modules(DEFLATE REQUIRED IMPORTED_TARGET libdeflate)
# The tests' Python modules are the system's packages, so its interpreter goes first.
if(EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python interpreter of the tests")
endif()
