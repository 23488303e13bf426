// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace fs = std::filesystem;

namespace {

bool isSeparator(char c) {
    return c == '/';
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
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool HUTFile::isDir(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string HUTFile::getCanonicalName(const std::string& path) {
    if (path.empty()) return "";
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    if (error) return path;
    const std::string name = absolute.filename();
    const bool whole = name.empty() || name == "." || name == ".." || isDir(absolute);
    const fs::path dir = whole ? absolute : absolute.parent_path();
    fs::path resolved = kernelName(dir);
    if (resolved.empty()) resolved = fs::weakly_canonical(dir, error);
    if (error) return absolute.lexically_normal();
    if (!whole) return resolved / name;
    std::string result = resolved;
    while (result.size() > 1 && isSeparator(result.back())) result.pop_back();
    return result;
}

std::string HUTFile::getParent(const std::string& path) {
    return fs::path(path).parent_path();
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
    std::error_code error;
    return !path.empty() && fs::exists(path, error);
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
