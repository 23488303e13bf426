// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "DirMemory.h"

namespace fs = std::filesystem;

namespace {

using mav_host::DirMemory;

/// What a walk saw at the path; DT_UNKNOWN when nobody looked.
unsigned char remembered(const std::string& path) {
    const DirMemory* const memory = DirMemory::current();
    return memory != nullptr ? memory->typeOf(path) : static_cast<unsigned char>(DT_UNKNOWN);
}

/// 0 when nothing is there or it cannot be asked.
mode_t modeOf(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode : 0;
}

/// The path from the root on, without "." and empty components. Empty when the path is empty or the
/// working directory cannot be told.
std::string tidyAbsolute(const std::string& path) {
    std::string full;
    if (path.empty()) return full;
    full.reserve(path.size() + 1);
    if (path.front() != '/') {
        std::error_code error;
        full = fs::current_path(error);
        if (error) return "";
        if (full == "/") full.clear();
    }
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view part = std::string_view(path).substr(start, end - start);
        if (!part.empty() && part != ".") full.append("/").append(part);
        start = end + 1;
    }
    if (full.empty()) full.push_back('/');
    return full;
}

/// Where the file name begins in a path.
std::size_t nameStart(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? 0 : slash + 1;
}

/// The directory's path with every link followed, as the kernel names it: far fewer questions than
/// one for each component. Empty when it cannot tell.
std::string kernelName(const std::string& dir) {
    constexpr std::string_view DELETED = " (deleted)";
    const int handle = ::open(dir.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return "";
    const std::string link = "/proc/self/fd/" + std::to_string(handle);
    std::array<char, 4096> text;
    const ssize_t size = ::readlink(link.c_str(), text.data(), text.size());
    ::close(handle);
    if (size <= 0 || static_cast<std::size_t>(size) == text.size() || text[0] != '/') return "";
    std::string name(text.data(), static_cast<std::size_t>(size));
    return name.ends_with(DELETED) ? "" : name;
}

}  // namespace

bool HUTFile::exists(const std::string& path) {
    return HUTPathUtils::exists(path);
}

bool HUTFile::isFile(const std::string& path) {
    return remembered(path) == DT_REG || S_ISREG(modeOf(path));
}

bool HUTFile::isDir(const std::string& path) {
    return remembered(path) == DT_DIR || S_ISDIR(modeOf(path));
}

std::string HUTFile::getCanonicalName(const std::string& path) {
    std::string full = tidyAbsolute(path);
    if (full.empty()) return path;
    DirMemory* const memory = DirMemory::current();
    if (memory != nullptr && memory->isCanonical(full)) return full;
    const std::size_t slash = full.rfind('/');
    const bool whole = full.ends_with("/..") || slash + 1 == full.size() || isDir(full);
    const std::string dir = whole ? full : full.substr(0, std::max<std::size_t>(slash, 1));
    std::string resolved = kernelName(dir);
    if (!resolved.empty()) {
        if (memory != nullptr) memory->keepCanonical(resolved);
    } else {
        std::error_code error;
        resolved = fs::weakly_canonical(dir, error);
        if (error) return fs::path(full).lexically_normal();
        while (resolved.size() > 1 && resolved.back() == '/') resolved.pop_back();
    }
    if (whole) return resolved;
    return resolved.append(full, resolved.size() > 1 ? slash : slash + 1);
}

std::string HUTFile::getParent(const std::string& path) {
    // Only repeated separators and the root need a closer look.
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return "";
    const bool plain = slash > 0 && path[slash - 1] != '/';
    return plain ? path.substr(0, slash) : fs::path(path).parent_path().string();
}

std::string HUTFile::getExt(const std::string& path) {
    const std::string extension = HUTPathUtils::extension(path);
    return extension.empty() ? "" : extension.substr(1);
}

bool HUTFile::isReadable(const std::string& path) {
    return ::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0;
}

bool HUTFile::isWritable(const std::string& path) {
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

std::string HUTFile::getIdentity(const std::string& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) return "";
    std::array<char, 128> text;
    std::snprintf(text.data(), text.size(), "%llx-%llx-%llx-%llx.%lx",
                  static_cast<unsigned long long>(status.st_dev),
                  static_cast<unsigned long long>(status.st_ino),
                  static_cast<unsigned long long>(status.st_size),
                  static_cast<unsigned long long>(status.st_ctim.tv_sec),
                  static_cast<unsigned long>(status.st_ctim.tv_nsec));
    return text.data();
}

const std::string& HUTFile::getDirSeparator() {
    static const std::string SEPARATOR = "/";
    return SEPARATOR;
}

bool HUTFile::rm(const std::string& path) {
    std::error_code error;
    if (!fs::is_directory(fs::symlink_status(path, error))) fs::remove(path, error);
    return fs::symlink_status(path, error).type() == fs::file_type::not_found;
}

bool HUTPathUtils::exists(const std::string& path) {
    const unsigned char type = remembered(path);
    return type == DT_REG || type == DT_DIR || modeOf(path) != 0;
}

std::string HUTPathUtils::extension(const std::string& path) {
    const std::size_t start = nameStart(path);
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || dot < start) return "";
    const std::size_t size = path.size() - start;
    const bool dotsAlone = size == 1 || (size == 2 && path[start] == '.');
    return dotsAlone && path.back() == '.' ? "" : path.substr(dot);
}

std::string HUTPathUtils::stem(const std::string& path) {
    const std::size_t start = nameStart(path);
    return path.substr(start, path.size() - start - extension(path).size());
}
