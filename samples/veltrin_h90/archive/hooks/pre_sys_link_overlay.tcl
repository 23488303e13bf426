# veltrin_h90: PRE_SYS_LINK_OVERLAY_TCL
puts "veltrin_h90: pre sys link overlay"
