// SPDX-License-Identifier: Apache-2.0
#include "FileDescriptor.h"

#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace mav_host {
namespace {

/// Lets a write fail that the system answers with a signal as well. The signal goes to the thread
/// that writes, so that it is held back here and taken away leaves the tool's own handling alone.
class WriteSignals {
  public:
    WriteSignals() {
        ::sigemptyset(&held_);
        ::sigaddset(&held_, SIGXFSZ);
        ::sigaddset(&held_, SIGPIPE);
        ::pthread_sigmask(SIG_BLOCK, &held_, &before_);
    }
    ~WriteSignals() {
        if (failed_) takeAway();
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    WriteSignals(const WriteSignals&) = delete;
    WriteSignals& operator=(const WriteSignals&) = delete;

    void failed() { failed_ = true; }

  private:
    void takeAway() {
        const int error = errno;
        constexpr timespec AT_ONCE{};
        for (const int signal : {SIGXFSZ, SIGPIPE}) {
            if (::sigismember(&before_, signal) != 0) continue;
            sigset_t one;
            ::sigemptyset(&one);
            ::sigaddset(&one, signal);
            ::sigtimedwait(&one, nullptr, &AT_ONCE);
        }
        errno = error;
    }

    sigset_t held_{};
    sigset_t before_{};
    bool failed_ = false;
};

}  // namespace

FileDescriptor openRegular(const std::string& path, int flags, int dir) {
    FileDescriptor file(
        ::openat(dir, path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        if (errno == ENXIO) errno = 0;  // a socket
        return {};
    }
    if (S_ISREG(status.st_mode)) return file;
    file.close();
    errno = 0;
    return {};
}

bool readAll(int fd, std::uint64_t limit, std::string& out) {
    struct stat status = {};
    if (::fstat(fd, &status) != 0) return false;
    const std::size_t start = out.size();
    // One byte more than there should be shows the end.
    const std::uint64_t most = limit + 1;
    std::uint64_t room = std::min(static_cast<std::uint64_t>(status.st_size) + 1, most);
    std::uint64_t done = 0;
    for (;;) {
        out.resize(start + room);
        const ssize_t count = ::read(fd, out.data() + start + done, room - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        done += static_cast<std::uint64_t>(count);
        if (count == 0 || done == most) break;
        if (done == room) room = std::min(2 * room, most);
    }
    out.resize(start + done);
    return true;
}

bool writeAll(int fd, std::string_view content) {
    WriteSignals signals;
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = ::write(fd, content.data() + done, content.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            signals.failed();
            return false;
        }
        done += static_cast<std::size_t>(count);
    }
    return true;
}

mode_t newFileMode() {
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

mode_t keptMode(const struct stat& before, uid_t owner, gid_t group) {
    mode_t mode = before.st_mode & 07777U;
    if (owner != before.st_uid) mode &= ~static_cast<mode_t>(S_ISUID);
    if (group != before.st_gid) {
        // Another group had what all others had.
        mode &= ~static_cast<mode_t>(S_ISGID | S_IRWXG);
        mode |= (mode & S_IRWXO) << 3U;
    }
    return mode;
}

bool keepRights(int fd, const struct stat& before) {
    // Only some may give a file away; it is good without that.
    if (::fchown(fd, before.st_uid, before.st_gid) != 0) {
        static_cast<void>(::fchown(fd, static_cast<uid_t>(-1), before.st_gid) != 0);
    }
    struct stat now = {};
    return ::fstat(fd, &now) == 0 && ::fchmod(fd, keptMode(before, now.st_uid, now.st_gid)) == 0;
}

std::string behindLinks(const std::string& path) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
    const fs::path target = fs::canonical(path, error);
    return error ? path : target.string();
}

}  // namespace mav_host
