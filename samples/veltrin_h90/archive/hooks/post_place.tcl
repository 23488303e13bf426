# veltrin_h90: POST_PLACE_TCL
puts "veltrin_h90: post place"
