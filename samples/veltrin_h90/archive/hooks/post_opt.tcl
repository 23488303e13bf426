# veltrin_h90: POST_OPT_TCL
puts "veltrin_h90: post opt"
