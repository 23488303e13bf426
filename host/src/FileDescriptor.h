// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace mav_host {

/// Owns an open file; -1 when there is none.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~FileDescriptor() { close(); }

    int get() const { return fd_; }
    bool isOpen() const { return fd_ >= 0; }
    /// Gives the file to somebody else.
    int release() { return std::exchange(fd_, -1); }
    /// False when closing reports a failure, as some file systems do for writes.
    bool close() {
        const int fd = std::exchange(fd_, -1);
        return fd < 0 || ::close(fd) == 0;
    }

  private:
    int fd_ = -1;
};

/// Opens a regular file for reading without waiting for anybody, such as the writer of a named
/// pipe. What was opened is what was checked. Not open with errno set when that fails; errno is 0
/// for what is no regular file. `flags` are added to those of opening.
FileDescriptor openRegular(const std::string& path, int flags = 0, int dir = AT_FDCWD);

/// Appends what is left of the file, and stops behind `limit` bytes, so a text longer than that
/// tells of a larger file. False with errno set when reading fails.
bool readAll(int fd, std::uint64_t limit, std::string& out);

/// Writes all of the content. False with errno set when that fails, also where the system would end
/// the process with a signal: a file larger than allowed, a pipe without a reader.
bool writeAll(int fd, std::string_view content);

/// The mode of a new file: what the process's mask leaves of 0666. Read without changing the mask
/// where the system shows it, because the tool's other threads may be making files.
mode_t newFileMode();

/// What a file that replaces another one may keep of its mode when it could not get its owner or
/// group: no rights that the old ones had and the new ones had not.
mode_t keptMode(const struct stat& before, uid_t owner, gid_t group);

/// Gives the file the mode of the one that it replaces, and owner and group where the system lets
/// us. False with errno set when the mode cannot be set.
bool keepRights(int fd, const struct stat& before);

/// The file that a link leads to; the path itself when it is no link or leads nowhere.
std::string behindLinks(const std::string& path);

}  // namespace mav_host
