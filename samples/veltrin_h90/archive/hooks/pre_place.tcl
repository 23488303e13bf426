# veltrin_h90: PRE_PLACE_TCL
shell::lock_static_region
