// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTDirWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "DirMemory.h"
#include "FileDescriptor.h"
#include "mav_host/HEXError.h"

namespace fs = std::filesystem;

namespace {

thread_local HUTDirWalkProgress* theProgress = nullptr;
thread_local HUTDirWalkFilter* theFilter = nullptr;

using mav_host::DirIdentity;
using mav_host::DirItem;
using mav_host::DirItems;
using mav_host::DirMemory;
using mav_host::FileDescriptor;

struct Level {
    std::size_t prefix;  ///< length of the directory's path, with the separator
    std::shared_ptr<const DirItems> items;
    std::size_t next = 0;
    bool canonical = false;  ///< the path is known to be the canonical name
    DirIdentity identity;
};

[[noreturn]] void fail(const std::string& dir, const std::string& reason) {
    throw HEXUserException("The directory '" + dir + "' cannot be read: " + reason);
}

[[noreturn]] void fail(const std::string& dir, int error) {
    fail(dir, std::generic_category().message(error));
}

/// The kind of a file that the directory did not tell; unknown when the file has vanished.
unsigned char askType(const std::string& path) {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0) return DT_UNKNOWN;
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

/// True when nothing stands at the end of the link: the chain that it begins is broken or comes
/// back to a link of its own.
bool leadsNowhere(fs::path link) {
    constexpr std::size_t MOST_LINKS = 1000;
    std::set<DirIdentity> seen;
    while (seen.size() <= MOST_LINKS) {
        struct stat status = {};
        if (::lstat(link.c_str(), &status) != 0) return errno == ENOENT || errno == ELOOP;
        if (!S_ISLNK(status.st_mode)) return false;
        if (!seen.insert({status.st_dev, status.st_ino}).second) return true;
        std::error_code error;
        link = link.parent_path() / fs::read_symlink(link, error);
    }
    return false;
}

/// Room for what the system tells of a directory at once; taken once for all of a walk.
using Answers = std::array<char, 32U << 10U>;

/// Stops soon after `most` items, which are too many then.
std::shared_ptr<const DirItems> readItems(int dir, const std::string& path, std::size_t most,
                                          Answers& answers) {
    auto items = std::make_shared<DirItems>();
    while (items->size() <= most) {
        const ssize_t size = ::getdents64(dir, answers.data(), answers.size());
        // A directory that was removed after it was opened has nothing in it.
        if (size == 0 || (size < 0 && errno == ENOENT)) break;
        if (size < 0) fail(path, errno);
        for (ssize_t at = 0; at < size;) {
            // The system aligns the entries.
            const auto* const found = reinterpret_cast<const dirent64*>(answers.data() + at);
            at += found->d_reclen;
            const std::string_view name = found->d_name;
            if (name == "." || name == "..") continue;
            const unsigned char type =
                found->d_type != DT_UNKNOWN ? found->d_type : askType(path + "/" + found->d_name);
            if (type != DT_UNKNOWN) items->push_back({std::string(name), type});
        }
    }
    std::sort(items->begin(), items->end(),
              [](const DirItem& a, const DirItem& b) { return a.name < b.name; });
    return items;
}

class Walk {
  public:
    Walk(const HUTDirWalk::Options& options, const HUTDirWalk::Visitor& visit)
        : options_(options), visit_(visit), left_(options.mostEntries) {}

    bool run(const std::string& dir) {
        top_ = dir;
        const DirMemory* const memory = DirMemory::current();
        entry_.path = dir;
        enter(memory != nullptr && memory->isCanonical(dir));
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.items->size()) {
                levels_.pop_back();
                continue;
            }
            const DirItem& item = (*level.items)[level.next++];
            entry_.path.resize(level.prefix);
            entry_.path += item.name;
            entry_.depth = levels_.size() - 1;
            entry_.isDir = item.type == DT_DIR;
            if (item.type == DT_LNK && options_.followLinks && !follow()) continue;
            if (theProgress != nullptr) theProgress->visit(entry_.path);
            if (theFilter != nullptr && !theFilter->passes(top_, entry_)) continue;
            if (!visit_(entry_)) return false;
            if (!entry_.isDir || entry_.depth >= options_.maxDepth) continue;
            enter(level.canonical && item.type == DT_DIR);
        }
        return true;
    }

  private:
    /// Enters the directory that the entry's path names.
    void enter(bool canonical) {
        std::string& dir = entry_.path;
        Level level;
        level.canonical = canonical;
        if (!look(dir, level)) return;
        if (!dir.ends_with('/')) dir += '/';
        level.prefix = dir.size();
        levels_.push_back(std::move(level));
    }

    /// Fills the level from what is remembered or from the system; false when the directory is to
    /// be passed over.
    bool look(const std::string& dir, Level& level) {
        DirMemory* const memory = DirMemory::current();
        const DirMemory::Dir* const known = memory != nullptr ? memory->find(dir) : nullptr;
        if (known != nullptr && known->items) {
            level.items = known->items;
            level.identity = known->identity;
            if (isOpen(level.identity)) return false;
            spend(level.items->size());
            return true;
        }
        if (!open(dir, level)) return false;
        spend(level.items->size());
        if (memory != nullptr) memory->keep(dir, {level.items, level.canonical, level.identity});
        return true;
    }

    void spend(std::size_t entries) {
        if (entries > left_) {
            fail(entry_.path, "it takes the walk of '" + top_ + "' beyond " +
                                  std::to_string(options_.mostEntries) +
                                  " entries; walk its parts by themselves");
        }
        left_ -= entries;
    }

    bool open(const std::string& dir, Level& level) {
        const FileDescriptor file(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!file.isOpen()) {
            const bool vanished = errno == ENOENT || errno == ENOTDIR;
            if (vanished && !levels_.empty()) return false;
            fail(dir, errno);
        }
        struct stat status = {};
        if (::fstat(file.get(), &status) != 0) fail(dir, errno);
        level.identity = {status.st_dev, status.st_ino};
        if (isOpen(level.identity)) return false;
        const DirMemory* const memory = DirMemory::current();
        if (memory != nullptr) level.items = memory->items(level.identity);
        if (!level.items) level.items = readItems(file.get(), dir, left_, *answers_);
        return true;
    }

    /// Looks behind a link; false when it leads nowhere.
    bool follow() {
        struct stat status = {};
        if (::stat(entry_.path.c_str(), &status) != 0) {
            // A chain of more links than the system follows hides what is behind it.
            if (errno == ELOOP && !leadsNowhere(entry_.path)) fail(entry_.path, ELOOP);
            return false;
        }
        entry_.isDir = S_ISDIR(status.st_mode);
        return true;
    }

    bool isOpen(const DirIdentity& identity) const {
        return std::any_of(levels_.begin(), levels_.end(),
                           [&](const Level& level) { return level.identity == identity; });
    }

    const HUTDirWalk::Options& options_;
    const HUTDirWalk::Visitor& visit_;
    std::size_t left_;  ///< entries that the walk may still come to
    std::string top_;
    std::unique_ptr<Answers> answers_ = std::make_unique_for_overwrite<Answers>();
    HUTDirWalk::Entry entry_;  ///< one for all, so that its path is not taken anew for each
    std::vector<Level> levels_;
};

}  // namespace

bool HUTDirWalk::walk(const std::string& dir, const Options& options, const Visitor& visit) {
    return Walk(options, visit).run(dir);
}

HUTDirWalkProgress::~HUTDirWalkProgress() = default;
HUTDirWalkFilter::~HUTDirWalkFilter() = default;

HUTDirWalkFiltering::HUTDirWalkFiltering(HUTDirWalkFilter& filter)
    : before_(std::exchange(theFilter, &filter)) {}

HUTDirWalkFiltering::~HUTDirWalkFiltering() {
    theFilter = before_;
}

HUTDirWalkProgress* HUTDirWalk::setProgress(HUTDirWalkProgress* progress) {
    return std::exchange(theProgress, progress);
}

struct HUTDirMemory::Impl {
    mav_host::DirMemory memory;
    mav_host::DirMemory* before = nullptr;
};

HUTDirMemory::HUTDirMemory() : impl_(std::make_unique<Impl>()) {
    impl_->before = mav_host::DirMemory::install(&impl_->memory);
}

HUTDirMemory::~HUTDirMemory() {
    mav_host::DirMemory::install(impl_->before);
}
