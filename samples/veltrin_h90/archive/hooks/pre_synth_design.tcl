# veltrin_h90: PRE_SYNTH_DESIGN_TCL
puts "veltrin_h90: pre synth design"
