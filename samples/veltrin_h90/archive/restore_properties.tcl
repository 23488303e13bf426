# veltrin_h90: PFM_PROP_RESTORE
shell::set_platform_property restored true
