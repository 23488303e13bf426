# veltrin_h90: POST_ROUTE_TCL
shell::report_timing shell_timing.rpt
