// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "FileDescriptor.h"

namespace mav_host {

/// Where a file stands: its directory, held open, and its name in there.
struct Place {
    explicit Place(const std::string& path);

    FileDescriptor dir;
    int error = 0;  ///< of the system, when the directory cannot be opened
    std::string name;
};

/// A file that is made beside its place and renamed into it when it is whole. It is called PREFIX
/// and sixteen hexadecimal digits, and is locked as long as its writer lives.
class NewFile {
  public:
    NewFile() = default;
    /// Makes it in the directory, which must outlive it. Not open with errno set when that fails.
    NewFile(int dir, const std::string& prefix, mode_t mode);
    NewFile(NewFile&& other) noexcept;
    NewFile& operator=(NewFile&& other) noexcept;
    /// Removes it, unless it has its place.
    ~NewFile();

    int get() const { return file_.get(); }
    const std::string& name() const { return name_; }
    bool isOpen() const { return file_.isOpen(); }
    /// Tells of failures that some file systems report when a file is closed; it stays open. False
    /// with errno set.
    bool flush() const;
    /// True while its name leads to it: nobody put another file there.
    bool isNamed() const;
    /// Puts it into its place; a link there is replaced itself. False with errno set.
    bool rename(const std::string& name);

  private:
    FileDescriptor file_;
    int dir_ = -1;
    std::string name_;  ///< empty when there is nothing to remove
};

/// Removes the files in the directory that were made with the prefix by writers which died.
void removeDead(int dir, const std::string& prefix);

}  // namespace mav_host
