# veltrin_h90: POST_DEBUG_PROFILE_OVERLAY_TCL
puts "veltrin_h90: post debug profile overlay"
