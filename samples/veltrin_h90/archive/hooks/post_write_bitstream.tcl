# veltrin_h90: POST_WRITE_BITSTREAM_TCL
puts "veltrin_h90: post write bitstream"
