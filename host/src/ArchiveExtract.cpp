// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "zipInternal.h"

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
        : zip_(openZip(archive)), archive_(archive), dir_(dir) {}

    zip_t* zip() const { return zip_.get(); }

    /// Refuses before anything is written what must not be written as a whole.
    void check(const HSTVector<zip_uint64_t>& members) const {
        struct stat status;
        const bool known = ::stat(archive_.c_str(), &status) == 0;
        const std::uint64_t room =
            std::max(HUTZip::FREE_EXTRACT_SIZE,
                     known ? static_cast<std::uint64_t>(status.st_size) * HUTZip::MAX_EXTRACT_RATIO
                           : std::uint64_t{0});
        std::uint64_t total = 0;
        for (const zip_uint64_t index : members) {
            const std::string name = memberName(zip_.get(), index);
            if (!isSafeMemberName(name)) {
                refuse(name, archive_, "its name leads out of the directory");
            }
            const std::uint64_t size = statMember(zip_.get(), index).size;
            if (size > room - total) {
                refuse(name, archive_,
                       "more than " + std::to_string(room) +
                           " bytes would be written, too many for the size of the archive");
            }
            total += size;
        }
    }

    void extract(zip_uint64_t index) const {
        const std::string member = memberName(zip_.get(), index);
        const FileDescriptor parent = openParent(member);
        const std::string leaf = member.substr(member.rfind('/') + 1);
        if (leaf.empty() || leaf == ".") return;
        extractAs(index, parent, leaf);
    }

    /// Extracts into the directory itself, under another name.
    void extractAs(zip_uint64_t index, const std::string& leaf) const {
        extractAs(index, openDir(memberName(zip_.get(), index)), leaf);
    }

  private:
    void extractAs(zip_uint64_t index, const FileDescriptor& parent,
                   const std::string& leaf) const {
        const std::string member = memberName(zip_.get(), index);
        const std::string temporary =
            ".extracting-" + std::to_string(::getpid()) + "-" + std::to_string(index);
        try {
            write(index, member, parent.get(), temporary);
            // Renaming replaces a link itself and never what it points at.
            if (::renameat(parent.get(), temporary.c_str(), parent.get(), leaf.c_str()) != 0) {
                refuseFile(member);
            }
        } catch (...) {
            ::unlinkat(parent.get(), temporary.c_str(), 0);
            throw;
        }
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

    void write(zip_uint64_t index, const std::string& member, int parent,
               const std::string& temporary) const {
        ::unlinkat(parent, temporary.c_str(), 0);
        FileDescriptor file(::openat(parent, temporary.c_str(),
                                     O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
        if (!file.isOpen()) refuseFile(member);
        streamMember(zip_.get(), index, archive_, UINT64_MAX,
                     [&](const char* data, std::size_t size) {
                         if (!writeAll(file.get(), {data, size})) refuseFile(member);
                     });
        if (!file.close()) refuseFile(member);
    }

    [[noreturn]] void refuseFile(const std::string& member) const {
        refuse(member, archive_, "it cannot be written below '" + dir_ + "': " + systemText());
    }

    ZipHandle zip_;
    std::string archive_;
    std::string dir_;
};

/// The entry of the directory itself, which ends in "/", counts too.
bool isBelow(const std::string& name, const std::string& dir) {
    return name.size() > dir.size() && name[dir.size()] == '/' && name.starts_with(dir);
}

}  // namespace
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
