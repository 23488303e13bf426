// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "NewFile.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "zip/zipInternal.h"

namespace mav_host {
namespace {

[[noreturn]] void refuse(const std::string& member, const std::string& archive,
                         const std::string& reason) {
    throw HEXUserException("The member '" + member + "' of the archive '" + archive +
                           "' is not extracted: " + reason);
}

std::string systemText() {
    return std::error_code(errno, std::generic_category()).message();
}

/// Extracts members of one archive below one directory. All is done relative to opened directories,
/// so that no link planted on the way leads out.
class Extraction {
  public:
    Extraction(const std::string& archive, const std::string& dir)
        : open_(openZip(archive)), archive_(archive), dir_(dir) {}

    zip_t* zip() const { return open_.zip.get(); }

    /// Refuses before anything is written what must not be written as a whole.
    void check(const HSTVector<zip_uint64_t>& members) const {
        const std::uint64_t room = inflationLimit(open_.size);
        std::uint64_t total = 0;
        for (const zip_uint64_t index : members) {
            const std::string name = memberName(zip(), index);
            if (!isSafeMemberName(name)) {
                refuse(name, archive_, "its name leads out of the directory");
            }
            const std::uint64_t size = statMember(zip(), index).size;
            if (size > room - total) {
                refuse(name, archive_,
                       "more than " + std::to_string(room) +
                           " bytes would be written, too many for the size of the archive");
            }
            total += size;
        }
    }

    void extract(zip_uint64_t index) const {
        const std::string member = memberName(zip(), index);
        const FileDescriptor parent = openParent(member);
        const std::string leaf = member.substr(member.rfind('/') + 1);
        if (leaf.empty() || leaf == ".") return;
        extractAs(index, parent, leaf);
    }

    /// Extracts into the directory itself, under another name.
    void extractAs(zip_uint64_t index, const std::string& leaf) const {
        extractAs(index, openDir(memberName(zip(), index)), leaf);
    }

  private:
    void extractAs(zip_uint64_t index, const FileDescriptor& parent,
                   const std::string& leaf) const {
        const std::string member = memberName(zip(), index);
        constexpr const char* PREFIX = ".extracting-";
        struct stat status = {};
        if (::fstat(parent.get(), &status) == 0 &&
            cleaned_.insert({status.st_dev, status.st_ino}).second) {
            removeDead(parent.get(), PREFIX);
        }
        NewFile file(parent.get(), PREFIX, 0666);
        if (!file.isOpen()) refuseFile(member);
        streamMember(zip(), index, archive_, UINT64_MAX, [&](const char* data, std::size_t size) {
            if (!writeAll(file.get(), {data, size})) refuseFile(member);
        });
        // Renaming replaces a link itself and never what it points at.
        if (!file.flush() || !file.rename(leaf)) refuseFile(member);
    }

    FileDescriptor openDir(const std::string& member) const {
        std::error_code error;
        std::filesystem::create_directories(dir_, error);
        FileDescriptor at(::open(dir_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (at.isOpen()) return at;
        const std::string reason = error ? error.message() : systemText();
        refuse(member, archive_, "the folder '" + dir_ + "' cannot be made: " + reason);
    }

    /// Opens the directory of the member's file, making what lacks of it.
    FileDescriptor openParent(const std::string& member) const {
        FileDescriptor at = openDir(member);
        std::size_t start = 0;
        for (std::size_t end; (end = member.find('/', start)) != std::string::npos;
             start = end + 1) {
            const std::string part = member.substr(start, end - start);
            if (part.empty() || part == ".") continue;
            const std::string folder = "'" + dir_ + "/" + member.substr(0, end) + "'";
            if (::mkdirat(at.get(), part.c_str(), 0777) != 0 && errno != EEXIST) {
                refuse(member, archive_,
                       "the folder " + folder + " cannot be made: " + systemText());
            }
            FileDescriptor next(
                ::openat(at.get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (!next.isOpen()) {
                refuse(member, archive_,
                       folder + " is not a directory of its own: " + systemText());
            }
            at = std::move(next);
        }
        return at;
    }

    [[noreturn]] void refuseFile(const std::string& member) const {
        refuse(member, archive_, "it cannot be written below '" + dir_ + "': " + systemText());
    }

    OpenZip open_;
    std::string archive_;
    std::string dir_;
    mutable std::set<std::pair<dev_t, ino_t>> cleaned_;  ///< directories without what died there
};

/// The entry of the directory itself, which ends in "/", counts too.
bool isBelow(const std::string& name, const std::string& dir) {
    return name.size() > dir.size() && name[dir.size()] == '/' && name.starts_with(dir);
}

}  // namespace

std::uint64_t inflationLimit(std::uint64_t archiveSize) {
    return std::max(HUTZip::FREE_EXTRACT_SIZE, archiveSize * HUTZip::MAX_EXTRACT_RATIO);
}

}  // namespace mav_host

bool HUTZip::extractFile(const std::string& archive, const std::string& member,
                         const std::string& dir) {
    const mav_host::Extraction extraction(archive, dir);
    const zip_int64_t index = mav_host::findMember(extraction.zip(), member);
    if (index < 0) return false;
    extraction.check({static_cast<zip_uint64_t>(index)});
    extraction.extract(static_cast<zip_uint64_t>(index));
    return true;
}

bool HUTZip::extractAs(const std::string& archive, const std::string& member,
                       const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string leaf = path.substr(slash + 1);
    if (leaf.empty() || leaf == "." || leaf == "..") {
        throw HEXUserException("The member '" + member + "' of the archive '" + archive +
                               "' is not extracted: '" + path + "' does not name a file");
    }
    const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const mav_host::Extraction extraction(archive, dir);
    const zip_int64_t index = mav_host::findMember(extraction.zip(), member);
    if (index < 0 || member.ends_with('/')) return false;
    extraction.check({static_cast<zip_uint64_t>(index)});
    extraction.extractAs(static_cast<zip_uint64_t>(index), leaf);
    return true;
}

bool HUTZip::extractDir(const std::string& archive, const std::string& member,
                        const std::string& dir) {
    const mav_host::Extraction extraction(archive, dir);
    const std::string folder = member.substr(0, member.find_last_not_of('/') + 1);
    if (folder.empty()) return false;
    const zip_int64_t count = zip_get_num_entries(extraction.zip(), 0);
    HSTVector<zip_uint64_t> found;
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const std::string name = mav_host::memberName(extraction.zip(), index);
        // Of equal names the first counts.
        if (mav_host::isBelow(name, folder) && mav_host::findMember(extraction.zip(), name) == i) {
            found.push_back(index);
        }
    }
    extraction.check(found);
    for (const zip_uint64_t index : found) extraction.extract(index);
    return !found.empty();
}
