# veltrin_h90: PRE_OPT_TCL
puts "veltrin_h90: pre opt"
