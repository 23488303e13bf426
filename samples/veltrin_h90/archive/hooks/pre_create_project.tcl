# veltrin_h90: PRE_CREATE_PROJECT_TCL
puts "veltrin_h90: pre create project"
