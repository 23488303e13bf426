# tessomar_r2_p0: REBUILD_TCL
shell::open_design rebuilt
shell::add_repository iprepo
shell::add_boards boards
shell::regenerate
