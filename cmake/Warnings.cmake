# SPDX-License-Identifier: Apache-2.0
# One interface target carries the warnings, the sanitizers and the ccache launcher for every room.
set(MAV_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wcast-qual -Wundef)
add_library(mav_build_flags INTERFACE)
target_compile_options(mav_build_flags INTERFACE ${MAV_WARNINGS})
if(MAV_WERROR)
  target_compile_options(mav_build_flags INTERFACE -Werror)
endif()
if(MAV_SANITIZE)
  target_compile_options(mav_build_flags INTERFACE -fsanitize=${MAV_SANITIZE}
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # The sanitizers' own code misleads this one warning; the other builds keep it.
  target_compile_options(mav_build_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(mav_build_flags INTERFACE -fsanitize=${MAV_SANITIZE})
endif()
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
