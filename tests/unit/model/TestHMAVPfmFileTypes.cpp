// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>

#include "mav_platform/HMAVPfmFileTypes.h"

namespace {

using Types = HMAVPfmFileTypes;
using Tcl = Types::TclFileType;

/// The texts in the order of the values.
const char* const TEXTS =
    "DCP PR_SHELL_DCP BB_LOCKED_IMPL_DCP BB_SYNTH_DCP ROUTED_DCP FULL_BIT PDI PARTIAL_PDI "
    "PL_PDI BOOT_PDI PLM_ELF PMC_CDO STAGE1_BIT STAGE2_BIT CLEAR_BIT PARTIAL_BIT MCS "
    "SECONDARY_MCS HPFM REBUILD_TCL DR_BD TOP_BD IP_REPO_PATH IP_CACHE_DIR BOARD_REPO_PATH "
    "SIM_BINARY META_JSON EXT_META_JSON EMU_JSON EMU_XML SEMANTIC_LABEL PFM_PROP_RESTORE MMI "
    "DPEPRJ NOC_TRAFFIC NOC_CONSTRAINT NOC_SOLUTION FEATURE_ROM_TCL BIF PARTITION_META DTSI ISS "
    "ADDRESS_MAP LINK_RUNTIME PRE_SYS_LINK_TCL POST_SYS_LINK_TCL PRE_SYS_LINK_OVERLAY_TCL "
    "POST_SYS_LINK_OVERLAY_TCL POST_DEBUG_PROFILE_OVERLAY_TCL PRE_CREATE_PROJECT_TCL "
    "PRE_SYNTH_DESIGN_TCL POST_SYNTH_DESIGN_TCL PRE_INIT_TCL POST_INIT_TCL PRE_OPT_TCL "
    "POST_OPT_TCL PRE_POWER_OPT_TCL POST_POWER_OPT_TCL PRE_PLACE_TCL POST_PLACE_TCL "
    "PRE_POST_PLACE_POWER_OPT_TCL POST_POST_PLACE_POWER_OPT_TCL PRE_PHYS_OPT_TCL "
    "POST_PHYS_OPT_TCL PRE_ROUTE_TCL POST_ROUTE_TCL PRE_POST_ROUTE_PHYS_OPT_TCL "
    "POST_POST_ROUTE_PHYS_OPT_TCL PRE_WRITE_BITSTREAM_TCL POST_WRITE_BITSTREAM_TCL "
    "SYNTH_CONSTRS IMPL_CONSTRS ";

TEST(HMAVPfmFileTypes, ValuesAndTextsAreThoseOfTheList) {
    std::istringstream texts(TEXTS);
    int value = 0;
    for (std::string text; texts >> text; ++value) {
        EXPECT_EQ(Types::toFileType(text), value) << text;
        EXPECT_EQ(Types::toString(static_cast<Types::FileType>(value)), text);
        if (value < 44) continue;
        const int hook = value - 44;
        EXPECT_EQ(static_cast<int>(Types::toTclFileType(text)), hook) << text;
        EXPECT_EQ(Types::toString(static_cast<Tcl>(hook)), text);
        EXPECT_EQ(Types::getTclFileTypeMap().at(static_cast<Tcl>(hook)), text);
    }
    EXPECT_EQ(value, 72);
    EXPECT_EQ(Types::getFileTypeMap().size(), 72U);
    EXPECT_EQ(Types::getFileTypeMap().at(Types::IMPL_CONSTRS), "IMPL_CONSTRS");
    EXPECT_EQ(Types::getTclFileTypeMap().size(), 28U);
    EXPECT_EQ(Types::DPEPRJ, 33);
    EXPECT_EQ(static_cast<int>(Tcl::IMPL_CONSTRS), 27);
    for (const char* text : {"dcp", " DCP", "DCP ", "", "EMU_HPFM", "DC"}) {
        EXPECT_EQ(Types::toFileType(text), Types::FILE_TYPE_COUNT) << text;
    }
    // File types that are no hooks.
    for (const char* text : {"HPFM", "META_JSON", "LINK_RUNTIME"}) {
        EXPECT_EQ(Types::toTclFileType(text), Tcl::TCL_FILE_TYPE_COUNT) << text;
    }
    EXPECT_EQ(Types::toString(Types::FILE_TYPE_COUNT), "");
    EXPECT_EQ(Types::toString(Tcl::TCL_FILE_TYPE_COUNT), "");
}

}  // namespace
