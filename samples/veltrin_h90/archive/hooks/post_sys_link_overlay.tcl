# veltrin_h90: POST_SYS_LINK_OVERLAY_TCL
puts "veltrin_h90: post sys link overlay"
