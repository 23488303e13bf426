// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTFolder.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"

namespace {

using mav_host::FileDescriptor;

constexpr int DIRECTORY = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void refuse(const std::string& path) {
    throw HEXUserException("The directory '" + path + "' cannot be read: " +
                           std::error_code(errno, std::generic_category()).message());
}

/// Opens the directory of that path below another one; "" is that one itself.
FileDescriptor enter(int folder, std::string_view below) {
    FileDescriptor at(::openat(folder, ".", DIRECTORY));
    while (at.isOpen() && !below.empty()) {
        const std::string part(below.substr(0, below.find('/')));
        below.remove_prefix(std::min(part.size() + 1, below.size()));
        at = FileDescriptor(::openat(at.get(), part.c_str(), DIRECTORY | O_NOFOLLOW));
    }
    return at;
}

HUTFolder::Kind kindOf(const dirent& entry, int folder) {
    struct stat status = {};
    unsigned type = entry.d_type;
    if (type == DT_UNKNOWN && ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        type = IFTODT(status.st_mode);
    }
    if (type == DT_REG) return HUTFolder::Kind::PLAIN;
    if (type == DT_DIR) return HUTFolder::Kind::FOLDER;
    return type == DT_LNK ? HUTFolder::Kind::LINK : HUTFolder::Kind::OTHER;
}

}  // namespace

HUTFolder::HUTFolder(const std::string& path)
    : path_(path), folder_(::open(path.c_str(), DIRECTORY)) {
    if (folder_ < 0) refuse(path);
}

HUTFolder::~HUTFolder() {
    ::close(folder_);
}

HSTVector<HUTFolder::Entry> HUTFolder::list(const std::string& below) const {
    FileDescriptor folder = enter(folder_, below);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(
        folder.isOpen() ? ::fdopendir(folder.get()) : nullptr, ::closedir);
    if (!listing) refuse(pathOf(below));
    const int own = folder.release();
    HSTVector<Entry> entries;
    for (;;) {
        errno = 0;
        const dirent* const entry = ::readdir(listing.get());
        if (entry == nullptr && errno != 0) refuse(pathOf(below));
        if (entry == nullptr) break;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back({std::string(name), kindOf(*entry, own)});
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

int HUTFolder::open(const std::string& below) const {
    const std::size_t slash = below.rfind('/');
    const FileDescriptor parent =
        enter(folder_, slash == std::string::npos ? "" : below.substr(0, slash));
    if (!parent.isOpen()) return -1;
    return mav_host::openRegular(below.substr(slash + 1), O_NOFOLLOW, parent.get()).release();
}

std::string HUTFolder::pathOf(const std::string& below) const {
    if (below.empty()) return path_;
    return path_ + (path_.ends_with('/') ? "" : "/") + below;
}
