// SPDX-License-Identifier: Apache-2.0
#include "NewFile.h"

#include <dirent.h>
#include <sys/file.h>
#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>

namespace mav_host {
namespace {

constexpr std::string_view DIGITS = "0123456789abcdef";
constexpr std::size_t DIGIT_COUNT = 16;

/// Long enough that nobody else's file is ever taken for one of ours.
std::string randomDigits() {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof(number), 0) != sizeof(number)) return {};
    std::string text;
    for (std::size_t i = 0; i < DIGIT_COUNT; ++i, number >>= 4U) text += DIGITS[number & 15U];
    return text;
}

bool isNewName(std::string_view name, std::string_view prefix) {
    return name.size() == prefix.size() + DIGIT_COUNT && name.starts_with(prefix) &&
           name.find_first_not_of(DIGITS, prefix.size()) == std::string_view::npos;
}

/// Locks a file that was just made. False when somebody took it for a dead one's meanwhile. Where
/// files cannot be locked, nobody removes one either.
bool takeLock(int file) {
    if (::flock(file, LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
    struct stat status = {};
    return ::fstat(file, &status) == 0 && status.st_nlink > 0;
}

void removeIfDead(int dir, const char* name) {
    const FileDescriptor file(
        ::openat(dir, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) ::unlinkat(dir, name, 0);
}

}  // namespace

Place::Place(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    name = path.substr(slash + 1);
    const std::string parent = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    dir = FileDescriptor(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A directory that may not be listed can be worked in all the same.
    if (!dir.isOpen() && errno == EACCES) {
        dir = FileDescriptor(::open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    if (!dir.isOpen()) error = errno;
}

NewFile::NewFile(int dir, const std::string& prefix, mode_t mode) : dir_(dir) {
    constexpr int ATTEMPTS = 100;
    for (int i = 0; i < ATTEMPTS; ++i) {
        const std::string name = prefix + randomDigits();
        FileDescriptor file(
            ::openat(dir, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (!file.isOpen() && errno == EEXIST) continue;
        if (!file.isOpen()) return;
        name_ = name;
        if (takeLock(file.get())) {
            file_ = std::move(file);
            return;
        }
        ::unlinkat(dir_, name_.c_str(), 0);
        name_.clear();
    }
    errno = EEXIST;
}

NewFile::NewFile(NewFile&& other) noexcept
    : file_(std::move(other.file_)),
      dir_(other.dir_),
      name_(std::exchange(other.name_, std::string())) {}

NewFile& NewFile::operator=(NewFile&& other) noexcept {
    std::swap(file_, other.file_);
    std::swap(dir_, other.dir_);
    std::swap(name_, other.name_);
    return *this;
}

NewFile::~NewFile() {
    const int error = errno;
    if (!name_.empty()) ::unlinkat(dir_, name_.c_str(), 0);
    errno = error;
}

bool NewFile::flush() const {
    FileDescriptor copy(::fcntl(file_.get(), F_DUPFD_CLOEXEC, 0));
    return copy.isOpen() && copy.close();
}

bool NewFile::isNamed() const {
    struct stat held = {};
    struct stat named = {};
    return ::fstat(file_.get(), &held) == 0 &&
           ::fstatat(dir_, name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

bool NewFile::rename(const std::string& name) {
    if (::renameat(dir_, name_.c_str(), dir_, name.c_str()) != 0) return false;
    name_.clear();
    return true;
}

void removeDead(int dir, const std::string& prefix) {
    FileDescriptor own(::openat(dir, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!own.isOpen()) return;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(own.get()), ::closedir);
    if (!listing) return;
    static_cast<void>(own.release());
    while (const dirent* const entry = ::readdir(listing.get())) {
        if (isNewName(entry->d_name, prefix)) removeIfDead(dir, entry->d_name);
    }
}

}  // namespace mav_host
