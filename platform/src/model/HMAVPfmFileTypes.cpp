// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVPfmFileTypes.h"

namespace {

/// Text forms in the order of the values.
#define MAV_NAME(name, meaning) #name,
constexpr const char* NAMES[] = {MAV_FILE_TYPES(MAV_NAME, MAV_NAME)};
#undef MAV_NAME

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

bool HMAVPfmFileTypes::isFolder(const std::string& type) {
    return type == NAMES[IP_REPO_PATH] || type == NAMES[IP_CACHE_DIR] ||
           type == NAMES[BOARD_REPO_PATH];
}
