// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

/// A scratch directory of its own below the host's temporary directory. It stays when this object
/// goes; `deleteTmpDir` removes it.
class MAV_API HMAVTmpDirObject {
  public:
    HMAVTmpDirObject() = default;
    /// Makes the directory as `create` does.
    explicit HMAVTmpDirObject(const std::string& name);

    /// Makes a new directory whose name begins with `name`; one made before is left behind. Answers
    /// `exists()`; when the directory could not be made, `get()` is empty. Throws HEXUserException
    /// "HMAVTmpDirObject::createTmpDir() - " and the reason for a name that leads out of the
    /// temporary directory.
    bool create(const std::string& name);
    bool createTmpDir(const std::string& name);

    /// Absolute path; empty until a directory was made.
    const std::string& get() const { return path_; }
    bool empty() const { return path_.empty(); }
    bool exists() const;
    /// Removes the directory with all that is in it; the path is kept. Reports "@1-1874@%s" with it
    /// when the directory is still there.
    void deleteTmpDir();

  private:
    std::string path_;
};
