# veltrin_h90: POST_POST_PLACE_POWER_OPT_TCL
puts "veltrin_h90: post post place power opt"
