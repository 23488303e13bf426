# veltrin_h90: POST_SYNTH_DESIGN_TCL
puts "veltrin_h90: post synth design"
