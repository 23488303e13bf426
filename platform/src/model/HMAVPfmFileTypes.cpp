// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVPfmFileTypes.h"

namespace {

/// Text forms in the order of the values.
constexpr const char* NAMES[] = {
    "DCP",
    "PR_SHELL_DCP",
    "BB_LOCKED_IMPL_DCP",
    "BB_SYNTH_DCP",
    "ROUTED_DCP",
    "FULL_BIT",
    "PDI",
    "PARTIAL_PDI",
    "PL_PDI",
    "BOOT_PDI",
    "PLM_ELF",
    "PMC_CDO",
    "STAGE1_BIT",
    "STAGE2_BIT",
    "CLEAR_BIT",
    "PARTIAL_BIT",
    "MCS",
    "SECONDARY_MCS",
    "HPFM",
    "REBUILD_TCL",
    "DR_BD",
    "TOP_BD",
    "IP_REPO_PATH",
    "IP_CACHE_DIR",
    "BOARD_REPO_PATH",
    "SIM_BINARY",
    "META_JSON",
    "EXT_META_JSON",
    "EMU_JSON",
    "EMU_XML",
    "SEMANTIC_LABEL",
    "PFM_PROP_RESTORE",
    "MMI",
    "DPEPRJ",
    "NOC_TRAFFIC",
    "NOC_CONSTRAINT",
    "NOC_SOLUTION",
    "FEATURE_ROM_TCL",
    "BIF",
    "PARTITION_META",
    "DTSI",
    "ISS",
    "ADDRESS_MAP",
    "LINK_RUNTIME",
    "PRE_SYS_LINK_TCL",
    "POST_SYS_LINK_TCL",
    "PRE_SYS_LINK_OVERLAY_TCL",
    "POST_SYS_LINK_OVERLAY_TCL",
    "POST_DEBUG_PROFILE_OVERLAY_TCL",
    "PRE_CREATE_PROJECT_TCL",
    "PRE_SYNTH_DESIGN_TCL",
    "POST_SYNTH_DESIGN_TCL",
    "PRE_INIT_TCL",
    "POST_INIT_TCL",
    "PRE_OPT_TCL",
    "POST_OPT_TCL",
    "PRE_POWER_OPT_TCL",
    "POST_POWER_OPT_TCL",
    "PRE_PLACE_TCL",
    "POST_PLACE_TCL",
    "PRE_POST_PLACE_POWER_OPT_TCL",
    "POST_POST_PLACE_POWER_OPT_TCL",
    "PRE_PHYS_OPT_TCL",
    "POST_PHYS_OPT_TCL",
    "PRE_ROUTE_TCL",
    "POST_ROUTE_TCL",
    "PRE_POST_ROUTE_PHYS_OPT_TCL",
    "POST_POST_ROUTE_PHYS_OPT_TCL",
    "PRE_WRITE_BITSTREAM_TCL",
    "POST_WRITE_BITSTREAM_TCL",
    "SYNTH_CONSTRS",
    "IMPL_CONSTRS",
};

constexpr int FILE_TYPES = HMAVPfmFileTypes::FILE_TYPE_COUNT;
constexpr int TCL_FILE_TYPES = static_cast<int>(HMAVPfmFileTypes::TclFileType::TCL_FILE_TYPE_COUNT);
constexpr int FIRST_TCL_TYPE = HMAVPfmFileTypes::PRE_SYS_LINK_TCL;

static_assert(sizeof(NAMES) / sizeof(NAMES[0]) == FILE_TYPES && FILE_TYPES == 72);
static_assert(FIRST_TCL_TYPE + TCL_FILE_TYPES == FILE_TYPES);

template <class Type>
const std::map<Type, std::string>& table(int first, int count) {
    static const std::map<Type, std::string> built = [&] {
        std::map<Type, std::string> map;
        for (int i = 0; i < count; ++i) map.emplace(static_cast<Type>(i), NAMES[first + i]);
        return map;
    }();
    return built;
}

int indexOf(const std::string& text, int first, int count) {
    int i = 0;
    while (i < count && text != NAMES[first + i]) ++i;
    return i;
}

std::string nameOf(int value, int first, int count) {
    return value >= 0 && value < count ? NAMES[first + value] : "";
}

}  // namespace

std::map<HMAVPfmFileTypes::FileType, std::string> HMAVPfmFileTypes::getFileTypeMap() {
    return table<FileType>(0, FILE_TYPES);
}

std::map<HMAVPfmFileTypes::TclFileType, std::string> HMAVPfmFileTypes::getTclFileTypeMap() {
    return table<TclFileType>(FIRST_TCL_TYPE, TCL_FILE_TYPES);
}

std::string HMAVPfmFileTypes::toString(FileType type) {
    return nameOf(static_cast<int>(type), 0, FILE_TYPES);
}

std::string HMAVPfmFileTypes::toString(TclFileType type) {
    return nameOf(static_cast<int>(type), FIRST_TCL_TYPE, TCL_FILE_TYPES);
}

HMAVPfmFileTypes::FileType HMAVPfmFileTypes::toFileType(const std::string& text) {
    return static_cast<FileType>(indexOf(text, 0, FILE_TYPES));
}

HMAVPfmFileTypes::TclFileType HMAVPfmFileTypes::toTclFileType(const std::string& text) {
    return static_cast<TclFileType>(indexOf(text, FIRST_TCL_TYPE, TCL_FILE_TYPES));
}
