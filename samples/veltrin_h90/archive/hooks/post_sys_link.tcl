# veltrin_h90: POST_SYS_LINK_TCL
puts "veltrin_h90: post sys link"
