# SPDX-License-Identifier: Apache-2.0
# mav_embed(OUTPUT HEADER NAMESPACE FUNCTION SUFFIX FILE...): writes the source OUTPUT with a function
# that answers the text of a file by its name without SUFFIX, or an empty text.
function(mav_embed output header namespace function suffix)
  if(NOT ARGN)
    message(FATAL_ERROR "There is nothing to embed into ${output}")
  endif()
  set(text "// Made by the build.\n#include \"${header}\"\n\nnamespace ${namespace} {\n\n")
  string(APPEND text "std::string_view ${function}(const std::string& name) {\n")
  foreach(path IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
    get_filename_component(name ${path} NAME)
    string(REPLACE "${suffix}" "" name ${name})
    file(READ ${path} content)
    string(APPEND text "    if (name == \"${name}\") return R\"~~(${content})~~\";\n")
  endforeach()
  string(APPEND text "    return {};\n}\n\n}  // namespace ${namespace}\n")
  file(GENERATE OUTPUT ${output} CONTENT "${text}")
endfunction()
