# SPDX-License-Identifier: Apache-2.0
# The version script of the shared library: C names are HMAV_1.0, the C++ classes MAV_CXX_1, and all
# else, such as instantiations of other libraries' templates, stays inside.
set(MAV_CXX_NAMES ComMsg* HBO* HEX* HHSM* HI18N_* HMAV* HPL* HST* HUT* HVMA* Platform*Extractor*
  zip_istream* zip_ostream* isl::* mav::* mav_host::* mav_platform::*)

function(mav_version_script path)
  set(text "HMAV_1.0 {\n  global:\n    hmav_*;\n};\n\nMAV_CXX_1 {\n  global:\n    extern \"C++\" {\n")
  foreach(kind IN ITEMS "" vtable?for? VTT?for? construction?vtable?for? typeinfo?for?
      typeinfo?name?for? virtual?thunk?to? non-virtual?thunk?to? guard?variable?for?)
    foreach(name IN LISTS MAV_CXX_NAMES)
      string(APPEND text "      ${kind}${name};\n")
    endforeach()
  endforeach()
  string(APPEND text "    };\n  local:\n    *;\n};\n")
  file(CONFIGURE OUTPUT ${path} CONTENT "${text}" @ONLY)
endfunction()
