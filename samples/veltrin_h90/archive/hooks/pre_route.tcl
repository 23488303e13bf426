# veltrin_h90: PRE_ROUTE_TCL
puts "veltrin_h90: pre route"
