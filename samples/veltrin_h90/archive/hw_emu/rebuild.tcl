# veltrin_h90_emu: REBUILD_TCL
shell::open_design rebuilt
shell::add_repository iprepo
shell::add_boards boards
shell::regenerate
