# veltrin_h90: PRE_SYS_LINK_TCL
puts "veltrin_h90: pre sys link"
