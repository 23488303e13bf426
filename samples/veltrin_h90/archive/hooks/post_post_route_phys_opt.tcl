# veltrin_h90: POST_POST_ROUTE_PHYS_OPT_TCL
puts "veltrin_h90: post post route phys opt"
