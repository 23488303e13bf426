# veltrin_h90: PRE_POST_PLACE_POWER_OPT_TCL
puts "veltrin_h90: pre post place power opt"
