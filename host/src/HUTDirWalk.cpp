// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTDirWalk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "mav_host/HEXError.h"

namespace {

/// Bounds trees in which links make the paths multiply with every level.
constexpr unsigned MOST_VISITS = 16;

HUTDirWalkProgress* theProgress = nullptr;

using Identity = std::pair<dev_t, ino_t>;

struct Item {
    std::string name;
    bool isDir;
};

struct Level {
    std::string prefix;  ///< path of the directory, with the separator
    std::vector<Item> items;
    std::size_t next = 0;
    std::optional<Identity> identity;  ///< known when loops are possible
};

struct Closer {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

class Walk {
  public:
    Walk(const HUTDirWalk::Options& options, const HUTDirWalk::Visitor& visit)
        : options_(options),
          visit_(visit),
          guarded_(options.followLinks &&
                   options.maxDepth == std::numeric_limits<std::size_t>::max()) {}

    bool run(const std::string& dir) {
        enter(dir);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.items.size()) {
                levels_.pop_back();
                continue;
            }
            const Item& item = level.items[level.next++];
            const HUTDirWalk::Entry entry{level.prefix + item.name, levels_.size() - 1, item.isDir};
            if (theProgress != nullptr) theProgress->visit(entry.path);
            if (!visit_(entry)) return false;
            if (entry.isDir && entry.depth < options_.maxDepth) enter(entry.path);
        }
        return true;
    }

  private:
    void enter(const std::string& dir) {
        const std::unique_ptr<DIR, Closer> handle(::opendir(dir.c_str()));
        if (!handle) {
            const bool vanished = errno == ENOENT || errno == ENOTDIR;
            if (vanished && !levels_.empty()) return;
            fail(dir, errno);
        }
        Level level;
        level.prefix = dir.ends_with('/') ? dir : dir + "/";
        if (guarded_) {
            struct stat status = {};
            if (::fstat(::dirfd(handle.get()), &status) != 0) fail(dir, errno);
            level.identity = Identity(status.st_dev, status.st_ino);
            if (isOpen(*level.identity) || ++visits_[*level.identity] > MOST_VISITS) return;
        }
        read(*handle, level);
        levels_.push_back(std::move(level));
    }

    void read(DIR& handle, Level& level) const {
        for (;;) {
            errno = 0;
            const dirent* const found = ::readdir(&handle);
            if (found == nullptr) break;
            std::string name = found->d_name;
            if (name == "." || name == "..") continue;
            add(level, std::move(name), found->d_type);
        }
        if (errno != 0) fail(level.prefix, errno);
        std::sort(level.items.begin(), level.items.end(),
                  [](const Item& a, const Item& b) { return a.name < b.name; });
    }

    void add(Level& level, std::string name, unsigned char type) const {
        bool isDir = type == DT_DIR;
        if (type == DT_UNKNOWN || (type == DT_LNK && options_.followLinks)) {
            struct stat status = {};
            const std::string path = level.prefix + name;
            const int failed = options_.followLinks ? ::stat(path.c_str(), &status)
                                                    : ::lstat(path.c_str(), &status);
            if (failed != 0) return;  // a link that leads nowhere, or it vanished
            isDir = S_ISDIR(status.st_mode);
        }
        level.items.push_back({std::move(name), isDir});
    }

    bool isOpen(const Identity& identity) const {
        return std::any_of(levels_.begin(), levels_.end(),
                           [&](const Level& level) { return level.identity == identity; });
    }

    [[noreturn]] static void fail(const std::string& dir, int error) {
        throw HEXUserException("The directory '" + dir +
                               "' cannot be read: " + std::generic_category().message(error));
    }

    const HUTDirWalk::Options& options_;
    const HUTDirWalk::Visitor& visit_;
    bool guarded_;
    std::vector<Level> levels_;
    std::map<Identity, unsigned> visits_;
};

}  // namespace

bool HUTDirWalk::walk(const std::string& dir, const Options& options, const Visitor& visit) {
    return Walk(options, visit).run(dir);
}

HUTDirWalkProgress::~HUTDirWalkProgress() = default;

HUTDirWalkProgress* HUTDirWalk::setProgress(HUTDirWalkProgress* progress) {
    return std::exchange(theProgress, progress);
}
