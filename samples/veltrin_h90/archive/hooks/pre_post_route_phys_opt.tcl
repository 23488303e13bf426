# veltrin_h90: PRE_POST_ROUTE_PHYS_OPT_TCL
puts "veltrin_h90: pre post route phys opt"
