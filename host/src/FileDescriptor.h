// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

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
    /// False when closing reports a failure, as some file systems do for writes.
    bool close() {
        const int fd = std::exchange(fd_, -1);
        return fd < 0 || ::close(fd) == 0;
    }

  private:
    int fd_ = -1;
};

/// Syncs a file or a directory that is named by path. False with errno set when that fails.
inline bool syncPath(const std::string& path) {
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return fd.isOpen() && ::fsync(fd.get()) == 0;
}

/// Writes all of the content. False with errno set when that fails.
bool writeAll(int fd, std::string_view content);

/// The mode of a new file: what the process's mask leaves of 0666. Read without changing the mask
/// where the system shows it, because the tool's other threads may be making files.
mode_t newFileMode();

/// The file that a link leads to; the path itself when it is no link or leads nowhere.
std::string behindLinks(const std::string& path);

}  // namespace mav_host
