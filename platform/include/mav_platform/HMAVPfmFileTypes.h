// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "mav_host/Export.h"

/// The closed list of platform file types. The text form of a value is the enumerator's own name.
class MAV_API HMAVPfmFileTypes {
  public:
    /// Numbered densely from 0; 72 stands for an unknown text.
    enum FileType {
        DCP,                 ///< design checkpoint of the platform
        PR_SHELL_DCP,        ///< checkpoint of the partial-reconfiguration shell
        BB_LOCKED_IMPL_DCP,  ///< implemented checkpoint with the black box locked
        BB_SYNTH_DCP,        ///< synthesised checkpoint with the black box
        ROUTED_DCP,          ///< routed checkpoint
        FULL_BIT,            ///< full-device bitstream
        PDI,                 ///< programmable device image
        PARTIAL_PDI,         ///< partial device image
        PL_PDI,              ///< device image for the programmable logic only
        BOOT_PDI,            ///< boot device image
        PLM_ELF,             ///< executable of the platform management firmware
        PMC_CDO,             ///< configuration data object for the platform management controller
        STAGE1_BIT,          ///< first-stage bitstream
        STAGE2_BIT,          ///< second-stage bitstream
        CLEAR_BIT,           ///< clearing bitstream
        PARTIAL_BIT,         ///< partial bitstream
        MCS,                 ///< flash configuration image
        SECONDARY_MCS,       ///< second flash configuration image
        HPFM,                ///< hardware platform metadata document
        REBUILD_TCL,         ///< script that rebuilds the platform design
        DR_BD,               ///< block design of the dynamic region
        TOP_BD,              ///< top-level block design
        IP_REPO_PATH,        ///< directory of an IP repository
        IP_CACHE_DIR,        ///< directory of an IP output cache
        BOARD_REPO_PATH,     ///< directory of a board repository
        SIM_BINARY,          ///< simulation binary
        META_JSON,           ///< archive metadata document
        EXT_META_JSON,       ///< extended emulation metadata document
        EMU_JSON,            ///< emulation metadata, JSON form
        EMU_XML,             ///< emulation metadata, XML form
        SEMANTIC_LABEL,      ///< semantic label document
        PFM_PROP_RESTORE,    ///< script that restores platform properties
        MMI,                 ///< memory map information file
        DPEPRJ,              ///< array-engine project archive
        NOC_TRAFFIC,         ///< network-on-chip traffic specification
        NOC_CONSTRAINT,      ///< network-on-chip constraints
        NOC_SOLUTION,        ///< network-on-chip solution
        FEATURE_ROM_TCL,     ///< script that sets the feature ROM
        BIF,                 ///< boot image description
        PARTITION_META,      ///< partition metadata
        DTSI,                ///< device-tree include
        ISS,                 ///< ISS file, carried as an opaque path
        ADDRESS_MAP,         ///< address map
        LINK_RUNTIME,        ///< link-time runtime file
        PRE_SYS_LINK_TCL,    ///< hook script run before system linking
        POST_SYS_LINK_TCL,   ///< hook script run after system linking
        PRE_SYS_LINK_OVERLAY_TCL,        ///< overlay hook before system linking
        POST_SYS_LINK_OVERLAY_TCL,       ///< overlay hook after system linking
        POST_DEBUG_PROFILE_OVERLAY_TCL,  ///< overlay hook after debug and profiling insertion
        PRE_CREATE_PROJECT_TCL,          ///< hook before the project is created
        PRE_SYNTH_DESIGN_TCL,            ///< hook before synthesis
        POST_SYNTH_DESIGN_TCL,           ///< hook after synthesis
        PRE_INIT_TCL,                    ///< hook before implementation initialisation
        POST_INIT_TCL,                   ///< hook after implementation initialisation
        PRE_OPT_TCL,                     ///< hook before logic optimisation
        POST_OPT_TCL,                    ///< hook after logic optimisation
        PRE_POWER_OPT_TCL,               ///< hook before power optimisation
        POST_POWER_OPT_TCL,              ///< hook after power optimisation
        PRE_PLACE_TCL,                   ///< hook before placement
        POST_PLACE_TCL,                  ///< hook after placement
        PRE_POST_PLACE_POWER_OPT_TCL,    ///< hook before post-placement power optimisation
        POST_POST_PLACE_POWER_OPT_TCL,   ///< hook after post-placement power optimisation
        PRE_PHYS_OPT_TCL,                ///< hook before physical optimisation
        POST_PHYS_OPT_TCL,               ///< hook after physical optimisation
        PRE_ROUTE_TCL,                   ///< hook before routing
        POST_ROUTE_TCL,                  ///< hook after routing
        PRE_POST_ROUTE_PHYS_OPT_TCL,     ///< hook before post-route physical optimisation
        POST_POST_ROUTE_PHYS_OPT_TCL,    ///< hook after post-route physical optimisation
        PRE_WRITE_BITSTREAM_TCL,         ///< hook before the bitstream is written
        POST_WRITE_BITSTREAM_TCL,        ///< hook after the bitstream is written
        SYNTH_CONSTRS,                   ///< constraints applied at synthesis
        IMPL_CONSTRS,                    ///< constraints applied at implementation
        FILE_TYPE_COUNT                  ///< 72: what an unknown text converts to
    };

    /// The build hook scripts and constraint sets, numbered from 0; 28 stands for an unknown text.
    /// A type of its own: its values are not FileType values and no conversion is offered.
    enum class TclFileType {
        PRE_SYS_LINK_TCL,
        POST_SYS_LINK_TCL,
        PRE_SYS_LINK_OVERLAY_TCL,
        POST_SYS_LINK_OVERLAY_TCL,
        POST_DEBUG_PROFILE_OVERLAY_TCL,
        PRE_CREATE_PROJECT_TCL,
        PRE_SYNTH_DESIGN_TCL,
        POST_SYNTH_DESIGN_TCL,
        PRE_INIT_TCL,
        POST_INIT_TCL,
        PRE_OPT_TCL,
        POST_OPT_TCL,
        PRE_POWER_OPT_TCL,
        POST_POWER_OPT_TCL,
        PRE_PLACE_TCL,
        POST_PLACE_TCL,
        PRE_POST_PLACE_POWER_OPT_TCL,
        POST_POST_PLACE_POWER_OPT_TCL,
        PRE_PHYS_OPT_TCL,
        POST_PHYS_OPT_TCL,
        PRE_ROUTE_TCL,
        POST_ROUTE_TCL,
        PRE_POST_ROUTE_PHYS_OPT_TCL,
        POST_POST_ROUTE_PHYS_OPT_TCL,
        PRE_WRITE_BITSTREAM_TCL,
        POST_WRITE_BITSTREAM_TCL,
        SYNTH_CONSTRS,
        IMPL_CONSTRS,
        TCL_FILE_TYPE_COUNT
    };

    /// The types and their text forms in the order of the values, 72 and 28 entries.
    static std::map<FileType, std::string> getFileTypeMap();
    static std::map<TclFileType, std::string> getTclFileTypeMap();
    /// The text form; empty for a value outside the list.
    static std::string toString(FileType type);
    static std::string toString(TclFileType type);
    /// The type whose text form equals the argument byte for byte, else 72 or 28.
    static FileType toFileType(const std::string& text);
    static TclFileType toTclFileType(const std::string& text);
};
