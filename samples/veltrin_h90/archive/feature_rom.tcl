# veltrin_h90: FEATURE_ROM_TCL
shell::write_feature_rom [shell::interface_uuid]
