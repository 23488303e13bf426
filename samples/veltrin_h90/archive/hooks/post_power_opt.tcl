# veltrin_h90: POST_POWER_OPT_TCL
puts "veltrin_h90: post power opt"
