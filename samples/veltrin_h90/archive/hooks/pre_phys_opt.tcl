# veltrin_h90: PRE_PHYS_OPT_TCL
puts "veltrin_h90: pre phys opt"
