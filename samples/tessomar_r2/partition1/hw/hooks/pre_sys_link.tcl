# tessomar_r2_p1: PRE_SYS_LINK_TCL
puts "tessomar_r2_p1: pre sys link"
