// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mav_host {

/// A name in a directory, with its kind as the directory tells it (DT_REG, DT_DIR, DT_LNK, …).
struct DirItem {
    std::string name;
    unsigned char type;
};
/// Sorted by bytes; without "." and "..", and without anything of an unknown kind.
using DirItems = std::vector<DirItem>;

/// Device and inode: one directory, whatever the path.
using DirIdentity = std::pair<dev_t, ino_t>;

/// What was seen of directories, by their path without a separator at its end. It answers only with
/// what is there; whatever it does not know has to be asked of the system.
class DirMemory {
  public:
    /// That of this thread; null when nothing is to be remembered.
    static DirMemory* current();
    /// Installs the thread's own and answers the one before.
    static DirMemory* install(DirMemory* memory);

    struct Dir {
        std::shared_ptr<const DirItems> items;  ///< null when it has not been read
        bool canonical = false;                 ///< the path is its canonical name
        DirIdentity identity;                   ///< with items alone
    };
    /// Null when nothing is known of the path. Valid until something is kept.
    const Dir* find(std::string_view dir) const;
    /// The content as another path has shown it; null when none has.
    std::shared_ptr<const DirItems> items(const DirIdentity& identity) const;
    /// Keeps a directory that was read.
    void keep(std::string_view dir, Dir known);
    void keepCanonical(std::string_view dir) { entry(dir).canonical = true; }

    /// The kind of what the path names; DT_UNKNOWN when that was not seen.
    unsigned char typeOf(std::string_view path) const;
    /// The path is known to be the canonical name of a file or of a directory.
    bool isCanonical(std::string_view path) const;

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    Dir& entry(std::string_view dir);

    using Dirs = std::unordered_map<std::string, Dir, Hash, std::equal_to<>>;
    Dirs dirs_;
    std::map<DirIdentity, std::shared_ptr<const DirItems>> items_;
    mutable const Dirs::value_type* last_ =
        nullptr;  ///< questions come in runs about one directory
};

}  // namespace mav_host
