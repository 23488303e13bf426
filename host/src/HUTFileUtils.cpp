// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "FileDescriptor.h"
#include "NewFile.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"

namespace fs = std::filesystem;

namespace {

using mav_host::FileDescriptor;

[[noreturn]] void refuseWith(const std::string& path, const char* step, const std::string& reason) {
    throw HEXUserException("The file '" + path + "' cannot be written (" + step + "): " + reason);
}

[[noreturn]] void refuse(const std::string& path, const char* step) {
    const std::error_code error(errno, std::generic_category());
    refuseWith(path, step, error.message() + "; it is as it was");
}

/// What stands where the file is to be; a mode of 0 when nothing does. Refuses what is no file,
/// because the rename would put a file in the place of a device or a pipe.
struct stat lookAt(const std::string& path, const std::string& target,
                   const HUTFileUtils::Writing& how) {
    struct stat status = {};
    const int found =
        how.replacesLinks ? ::lstat(target.c_str(), &status) : ::stat(target.c_str(), &status);
    if (found != 0 || S_ISLNK(status.st_mode)) return {};  // nothing, or a link to be replaced
    const bool device = S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode);
    if (S_ISREG(status.st_mode) || (device && how.toDevices)) return status;
    refuseWith(path, "looking at it", "it is a directory or a device; it is as it was");
}

/// Writes to a device or a named pipe as it stands; waits for the pipe's reader.
void writeTo(const std::string& path, const std::string& content) {
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) refuse(path, "opening");
    if (S_ISREG(status.st_mode)) {
        refuseWith(path, "opening", "it was replaced meanwhile; it is as it was");
    }
    if (!mav_host::writeAll(file.get(), content) || !file.close()) {
        refuseWith(path, "writing", std::generic_category().message(errno));
    }
}

enum class Read { WHOLE, LARGER, FAILED };

/// Asks for the size first: a file that is too large costs nothing. One that grows meanwhile is
/// still read up to the limit alone.
Read readUpTo(const FileDescriptor& file, std::uint64_t limit, std::string& out) {
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) return Read::FAILED;
    if (static_cast<std::uint64_t>(status.st_size) > limit) return Read::LARGER;
    if (!mav_host::readAll(file.get(), limit, out)) return Read::FAILED;
    return out.size() > limit ? Read::LARGER : Read::WHOLE;
}

}  // namespace

bool HUTFileUtils::makeDirs(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    return HUTFile::isDir(path);
}

bool HUTFileUtils::removeDirs(const std::string& path) {
    std::error_code error;
    fs::remove_all(path, error);
    return fs::symlink_status(path, error).type() == fs::file_type::not_found;
}

std::string HUTFileUtils::makeUniqueName(const std::string& dir, const std::string& name) {
    const std::string base = dir + HUTFile::getDirSeparator() + name;
    std::string candidate = base;
    std::error_code error;
    for (unsigned i = 1; fs::exists(fs::symlink_status(candidate, error)); ++i) {
        candidate = base + "_" + std::to_string(i);
    }
    return candidate;
}

void HUTFileUtils::list(const std::string& dir, HSTVector<std::string>& out) {
    const auto first = static_cast<std::ptrdiff_t>(out.size());
    std::error_code error;
    for (fs::directory_iterator at(dir, error), end; !error && at != end; at.increment(error)) {
        out.push_back(at->path().filename());
    }
    std::sort(out.begin() + first, out.end());
}

std::string HUTFileUtils::readWhole(const std::string& path, std::uint64_t limit) {
    const auto refuseReading = [&path](const std::string& reason) {
        throw HEXUserException("The file '" + path + "' cannot be read: " + reason);
    };
    const FileDescriptor file = mav_host::openRegular(path);
    if (!file.isOpen()) {
        if (errno == 0) refuseReading("it is not a regular file");
        if (errno == ENOENT) refuseReading("it does not exist");
        refuseReading(std::generic_category().message(errno));
    }
    std::string content;
    const Read how = readUpTo(file, limit, content);
    if (how == Read::FAILED) refuseReading(std::generic_category().message(errno));
    if (how == Read::LARGER) {
        refuseReading("it is larger than " + std::to_string(limit) + " bytes");
    }
    return content;
}

std::optional<std::string> HUTFileUtils::tryRead(const std::string& path, std::uint64_t limit,
                                                 bool& larger) {
    const FileDescriptor file = mav_host::openRegular(path);
    std::string content;
    const Read how = file.isOpen() ? readUpTo(file, limit, content) : Read::FAILED;
    larger = how == Read::LARGER;
    if (how != Read::WHOLE) return std::nullopt;
    return content;
}

std::optional<std::string> HUTFileUtils::tryRead(const std::string& path, std::uint64_t limit) {
    const FileDescriptor file = mav_host::openRegular(path);
    std::string content;
    if (!file.isOpen() || !mav_host::readAll(file.get(), limit, content)) return std::nullopt;
    return content;
}

void HUTFileUtils::writeWhole(const std::string& path, const std::string& content) {
    writeWhole(path, content, Writing());
}

void HUTFileUtils::writeWhole(const std::string& path, const std::string& content,
                              const Writing& how) {
    constexpr const char* MAKING = "making a file beside it";
    const std::string target = how.replacesLinks ? path : mav_host::behindLinks(path);
    const struct stat before = lookAt(path, target, how);
    const bool exists = before.st_mode != 0;
    if (exists && !S_ISREG(before.st_mode)) return writeTo(path, content);
    const mav_host::Place place(target);
    errno = place.error;
    if (!place.dir.isOpen()) refuse(path, MAKING);
    const std::string prefix = place.name + ".new-";
    mav_host::removeDead(place.dir.get(), prefix);
    mav_host::NewFile file(place.dir.get(), prefix, 0600);
    if (!file.isOpen()) refuse(path, MAKING);
    if (!mav_host::writeAll(file.get(), content)) refuse(path, "writing");
    const mode_t fresh = how.ownerOnly ? 0600 : mav_host::newFileMode();
    const bool granted =
        exists ? mav_host::keepRights(file.get(), before) : ::fchmod(file.get(), fresh) == 0;
    if (!granted) refuse(path, "setting permissions");
    if (::fsync(file.get()) != 0 || !file.flush()) refuse(path, "syncing");
    if (!file.rename(place.name)) refuse(path, "renaming");
    // The new content stands from here on; not every file system can sync a directory.
    ::fsync(place.dir.get());
}
