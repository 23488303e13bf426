// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

/// File questions and names. Questions never throw: what cannot be asked is answered with false or
/// an empty text.
class MAV_API HUTFile {
  public:
    /// A file or directory exists at the path (links are followed). False for an empty path.
    static bool exists(const std::string& path);
    static bool isFile(const std::string& path);
    static bool isDir(const std::string& path);
    /// This process may read the file.
    static bool isReadable(const std::string& path);
    /// This process may write to the file, or make files in the directory.
    static bool isWritable(const std::string& path);
    /// Absolute, dots resolved, links among the directories followed. The last component of a file
    /// keeps its name even where it is a link; of a directory it is followed too. Works for paths
    /// that do not exist, as far as they do. Empty for an empty path.
    static std::string getCanonicalName(const std::string& path);
    /// The parent directory as a file system path computes it; empty when there is none.
    static std::string getParent(const std::string& path);
    /// The text behind the file name's last dot, without the dot; empty when there is none.
    static std::string getExt(const std::string& path);
    /// A text that stands for the file's place and content: another one as soon as the file is
    /// replaced or written to. Usable as a file name; empty when the file cannot be asked.
    static std::string getIdentity(const std::string& path);
    /// "/" on this system.
    static const std::string& getDirSeparator();
    /// Removes one file or link, never a directory. True when nothing is there afterwards.
    static bool rm(const std::string& path);
};

/// Existence of whatever a path names.
class MAV_API HUTPathUtils {
  public:
    /// True for a file or a directory; false for an empty path.
    static bool exists(const std::string& path);
    /// The last component's text from its last dot on, dot included; "" when there is none. A name
    /// that is all extension, such as ".pka", counts as one.
    static std::string extension(const std::string& path);
    /// The file name without its last extension.
    static std::string stem(const std::string& path);
};

/// Directory work.
class MAV_API HUTFileUtils {
  public:
    /// Makes the directory and its parents. True when it is a directory afterwards.
    static bool makeDirs(const std::string& path);
    /// Removes a directory with all that is in it; links inside are removed, not followed. True
    /// when it is gone afterwards.
    static bool removeDirs(const std::string& path);
    /// A path in `dir` that begins with `name` and that nothing uses yet.
    static std::string makeUniqueName(const std::string& dir, const std::string& name);
    /// Appends the names inside `dir`, sorted by bytes, without "." and "..".
    static void list(const std::string& dir, HSTVector<std::string>& out);
    /// The content of a regular file. Throws HEXUserException "The file 'PATH' cannot be read:
    /// REASON" when it is none, is not readable or has more than `limit` bytes.
    static std::string readWhole(const std::string& path, std::uint64_t limit);
    /// The same without a text for a failure: nothing for what cannot be read, is no regular file
    /// or has more than `limit` bytes, which `larger` tells.
    static std::optional<std::string> tryRead(const std::string& path, std::uint64_t limit,
                                              bool& larger);
    /// The beginning of a regular file, of at most `limit` + 1 bytes: as many tell of a larger one.
    static std::optional<std::string> tryRead(const std::string& path, std::uint64_t limit);
    /// How a file is written.
    struct Writing {
        bool ownerOnly = false;      ///< a new file is its owner's alone (mode 0600)
        bool replacesLinks = false;  ///< a link in the file's place is replaced, not followed
        bool toDevices = false;      ///< a character device or a named pipe is written to as it is;
                                     ///< a pipe's reader is waited for
    };
    /// Writes the file as a whole: beside it, synced, then renamed, so that readers see the old or
    /// the new content and never a part. Through a link the file behind it is replaced. Keeps the
    /// permissions of a file that is replaced, and owner and group where the system lets us; what
    /// they alone had is dropped with them. Other hard links to it keep the old content. Throws
    /// HEXUserException "The file 'PATH' cannot be written (STEP): REASON; it is as it was"; the
    /// old file is then untouched and nothing is left beside it.
    static void writeWhole(const std::string& path, const std::string& content);
    static void writeWhole(const std::string& path, const std::string& content, const Writing& how);
};
