// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "mav_host/Export.h"

/// Every file type with what the file is, in the order of the values; the build hooks and
/// constraint sets, which come last, go to HOOK.
#define MAV_FILE_TYPES(TYPE, HOOK)                                                           \
    TYPE(DCP, "design checkpoint of the platform")                                           \
    TYPE(PR_SHELL_DCP, "checkpoint of the partial-reconfiguration shell")                    \
    TYPE(BB_LOCKED_IMPL_DCP, "implemented checkpoint with the black box locked")             \
    TYPE(BB_SYNTH_DCP, "synthesised checkpoint with the black box")                          \
    TYPE(ROUTED_DCP, "routed checkpoint")                                                    \
    TYPE(FULL_BIT, "full-device bitstream")                                                  \
    TYPE(PDI, "programmable device image")                                                   \
    TYPE(PARTIAL_PDI, "partial device image")                                                \
    TYPE(PL_PDI, "device image for the programmable logic only")                             \
    TYPE(BOOT_PDI, "boot device image")                                                      \
    TYPE(PLM_ELF, "executable of the platform management firmware")                          \
    TYPE(PMC_CDO, "configuration data object for the platform management controller")        \
    TYPE(STAGE1_BIT, "first-stage bitstream")                                                \
    TYPE(STAGE2_BIT, "second-stage bitstream")                                               \
    TYPE(CLEAR_BIT, "clearing bitstream")                                                    \
    TYPE(PARTIAL_BIT, "partial bitstream")                                                   \
    TYPE(MCS, "flash configuration image")                                                   \
    TYPE(SECONDARY_MCS, "second flash configuration image")                                  \
    TYPE(HPFM, "hardware platform metadata document")                                        \
    TYPE(REBUILD_TCL, "script that rebuilds the platform design")                            \
    TYPE(DR_BD, "block design of the dynamic region")                                        \
    TYPE(TOP_BD, "top-level block design")                                                   \
    TYPE(IP_REPO_PATH, "directory of an IP repository")                                      \
    TYPE(IP_CACHE_DIR, "directory of an IP output cache")                                    \
    TYPE(BOARD_REPO_PATH, "directory of a board repository")                                 \
    TYPE(SIM_BINARY, "simulation binary")                                                    \
    TYPE(META_JSON, "archive metadata document")                                             \
    TYPE(EXT_META_JSON, "extended emulation metadata document")                              \
    TYPE(EMU_JSON, "emulation metadata, JSON form")                                          \
    TYPE(EMU_XML, "emulation metadata, XML form")                                            \
    TYPE(SEMANTIC_LABEL, "semantic label document")                                          \
    TYPE(PFM_PROP_RESTORE, "script that restores platform properties")                       \
    TYPE(MMI, "memory map information file")                                                 \
    TYPE(DPEPRJ, "array-engine project archive")                                             \
    TYPE(NOC_TRAFFIC, "network-on-chip traffic specification")                               \
    TYPE(NOC_CONSTRAINT, "network-on-chip constraints")                                      \
    TYPE(NOC_SOLUTION, "network-on-chip solution")                                           \
    TYPE(FEATURE_ROM_TCL, "script that sets the feature ROM")                                \
    TYPE(BIF, "boot image description")                                                      \
    TYPE(PARTITION_META, "partition metadata")                                               \
    TYPE(DTSI, "device-tree include")                                                        \
    TYPE(ISS, "ISS file, carried as an opaque path")                                         \
    TYPE(ADDRESS_MAP, "address map")                                                         \
    TYPE(LINK_RUNTIME, "link-time runtime file")                                             \
    HOOK(PRE_SYS_LINK_TCL, "hook script run before system linking")                          \
    HOOK(POST_SYS_LINK_TCL, "hook script run after system linking")                          \
    HOOK(PRE_SYS_LINK_OVERLAY_TCL, "overlay hook before system linking")                     \
    HOOK(POST_SYS_LINK_OVERLAY_TCL, "overlay hook after system linking")                     \
    HOOK(POST_DEBUG_PROFILE_OVERLAY_TCL, "overlay hook after debug and profiling insertion") \
    HOOK(PRE_CREATE_PROJECT_TCL, "hook before the project is created")                       \
    HOOK(PRE_SYNTH_DESIGN_TCL, "hook before synthesis")                                      \
    HOOK(POST_SYNTH_DESIGN_TCL, "hook after synthesis")                                      \
    HOOK(PRE_INIT_TCL, "hook before implementation initialisation")                          \
    HOOK(POST_INIT_TCL, "hook after implementation initialisation")                          \
    HOOK(PRE_OPT_TCL, "hook before logic optimisation")                                      \
    HOOK(POST_OPT_TCL, "hook after logic optimisation")                                      \
    HOOK(PRE_POWER_OPT_TCL, "hook before power optimisation")                                \
    HOOK(POST_POWER_OPT_TCL, "hook after power optimisation")                                \
    HOOK(PRE_PLACE_TCL, "hook before placement")                                             \
    HOOK(POST_PLACE_TCL, "hook after placement")                                             \
    HOOK(PRE_POST_PLACE_POWER_OPT_TCL, "hook before post-placement power optimisation")      \
    HOOK(POST_POST_PLACE_POWER_OPT_TCL, "hook after post-placement power optimisation")      \
    HOOK(PRE_PHYS_OPT_TCL, "hook before physical optimisation")                              \
    HOOK(POST_PHYS_OPT_TCL, "hook after physical optimisation")                              \
    HOOK(PRE_ROUTE_TCL, "hook before routing")                                               \
    HOOK(POST_ROUTE_TCL, "hook after routing")                                               \
    HOOK(PRE_POST_ROUTE_PHYS_OPT_TCL, "hook before post-route physical optimisation")        \
    HOOK(POST_POST_ROUTE_PHYS_OPT_TCL, "hook after post-route physical optimisation")        \
    HOOK(PRE_WRITE_BITSTREAM_TCL, "hook before the bitstream is written")                    \
    HOOK(POST_WRITE_BITSTREAM_TCL, "hook after the bitstream is written")                    \
    HOOK(SYNTH_CONSTRS, "constraints applied at synthesis")                                  \
    HOOK(IMPL_CONSTRS, "constraints applied at implementation")

#define MAV_FILE_TYPE_(name, meaning) name,
#define MAV_FILE_TYPE_NONE_(name, meaning)

/// The closed list of platform file types. The text form of a value is the enumerator's own name.
class MAV_API HMAVPfmFileTypes {
  public:
    /// Numbered densely from 0; 72 stands for an unknown text.
    enum FileType : int {
        MAV_FILE_TYPES(MAV_FILE_TYPE_, MAV_FILE_TYPE_)  //
        FILE_TYPE_COUNT                                 ///< 72: what an unknown text converts to
    };

    /// The build hook scripts and constraint sets, numbered from 0; 28 stands for an unknown text.
    /// A type of its own: its values are not FileType values and no conversion is offered.
    enum class TclFileType : int {
        MAV_FILE_TYPES(MAV_FILE_TYPE_NONE_, MAV_FILE_TYPE_)  //
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
    /// True for the types whose name is that of a folder: IP_REPO_PATH, IP_CACHE_DIR and
    /// BOARD_REPO_PATH.
    static bool isFolder(const std::string& type);
};

#undef MAV_FILE_TYPE_
#undef MAV_FILE_TYPE_NONE_
