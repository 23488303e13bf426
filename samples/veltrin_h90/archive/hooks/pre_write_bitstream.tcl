# veltrin_h90: PRE_WRITE_BITSTREAM_TCL
shell::set_bitstream_option compress true
