// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"

namespace fs = std::filesystem;

namespace {

using mav_host::FileDescriptor;

[[noreturn]] void refuse(const std::string& path, const char* step, const std::string& temporary) {
    const std::error_code error(errno, std::generic_category());
    if (!temporary.empty()) ::unlink(temporary.c_str());
    throw HEXUserException("The file '" + path + "' cannot be written (" + step +
                           "): " + error.message() + "; it is as it was");
}

/// The mode of the file that will be replaced, else that of a new one. Refuses what is no file,
/// because the rename would put a file in the place of a device or a pipe.
mode_t modeFor(const std::string& path, const std::string& target) {
    struct stat status;
    if (::stat(target.c_str(), &status) != 0) return mav_host::newFileMode();
    if (S_ISREG(status.st_mode)) return status.st_mode & 07777U;
    throw HEXUserException("The file '" + path +
                           "' cannot be written (looking at it): it is a directory or a device; it "
                           "is as it was");
}

}  // namespace

bool mav_host::writeAll(int fd, std::string_view content) {
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = ::write(fd, content.data() + done, content.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

mode_t mav_host::newFileMode() {
    std::ifstream status("/proc/self/status");
    constexpr std::string_view LABEL = "Umask:";
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, LABEL.size(), LABEL) != 0) continue;
        const auto shown = std::strtoul(line.c_str() + LABEL.size(), nullptr, 8);
        return 0666U & ~static_cast<mode_t>(shown);
    }
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

std::string mav_host::behindLinks(const std::string& path) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
    const fs::path target = fs::canonical(path, error);
    return error ? path : target.string();
}

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
    // Asked before opening, which would wait for a writer of a named pipe.
    if (!HUTFile::isFile(path)) {
        refuseReading(HUTFile::exists(path) ? "it is not a regular file" : "it does not exist");
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) refuseReading(std::generic_category().message(errno));
    std::string content;
    char piece[1U << 16U];
    while (file.read(piece, sizeof(piece)) || file.gcount() > 0) {
        content.append(piece, static_cast<std::size_t>(file.gcount()));
        if (content.size() > limit) {
            refuseReading("it is larger than " + std::to_string(limit) + " bytes");
        }
    }
    if (file.bad()) refuseReading("reading failed before its end");
    return content;
}

void HUTFileUtils::writeWhole(const std::string& path, const std::string& content) {
    const std::string target = mav_host::behindLinks(path);
    const mode_t mode = modeFor(path, target);
    std::string temporary = target + ".new-XXXXXX";
    FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen()) refuse(path, "making a file beside it", "");
    if (!mav_host::writeAll(file.get(), content)) refuse(path, "writing", temporary);
    if (::fchmod(file.get(), mode) != 0) refuse(path, "setting permissions", temporary);
    if (::fsync(file.get()) != 0 || !file.close()) refuse(path, "syncing", temporary);
    if (::rename(temporary.c_str(), target.c_str()) != 0) refuse(path, "renaming", temporary);
    const std::string parent = HUTFile::getParent(target);
    mav_host::syncPath(parent.empty() ? "." : parent);
}
