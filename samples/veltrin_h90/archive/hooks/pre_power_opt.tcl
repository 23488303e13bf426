# veltrin_h90: PRE_POWER_OPT_TCL
puts "veltrin_h90: pre power opt"
