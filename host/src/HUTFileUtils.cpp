// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
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

bool writeAll(int fd, const std::string& content) {
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = ::write(fd, content.data() + done, content.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

/// The mode of the file that will be replaced, else what the process's mask leaves of 0666.
mode_t modeFor(const std::string& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) == 0) return status.st_mode & 07777U;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
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
    return !fs::exists(fs::symlink_status(path, error));
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

void HUTFileUtils::writeWhole(const std::string& path, const std::string& content) {
    std::string temporary = path + ".new-XXXXXX";
    FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen()) refuse(path, "making a file beside it", "");
    if (!writeAll(file.get(), content)) refuse(path, "writing", temporary);
    if (::fchmod(file.get(), modeFor(path)) != 0) refuse(path, "setting permissions", temporary);
    if (::fsync(file.get()) != 0 || !file.close()) refuse(path, "syncing", temporary);
    if (::rename(temporary.c_str(), path.c_str()) != 0) refuse(path, "renaming", temporary);
    const std::string parent = HUTFile::getParent(path);
    mav_host::syncPath(parent.empty() ? "." : parent);
}
