# veltrin_h90: PRE_INIT_TCL
puts "veltrin_h90: pre init"
