# veltrin_h90: POST_PHYS_OPT_TCL
puts "veltrin_h90: post phys opt"
