# veltrin_h90: POST_INIT_TCL
puts "veltrin_h90: post init"
