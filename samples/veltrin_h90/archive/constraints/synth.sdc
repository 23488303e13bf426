# veltrin_h90: SYNTH_CONSTRS
create_clock -name sys_clk -period 4.000 [get_ports sys_clk_p]
set_clock_uncertainty 0.050 [get_clocks sys_clk]
