// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

/// A directory that is held open. What is below it is found from there, one directory inside the
/// other and never through a link, so that nothing planted meanwhile leads elsewhere.
class MAV_API HUTFolder {
  public:
    enum class Kind { PLAIN, FOLDER, LINK, OTHER };
    struct Entry {
        std::string name;
        Kind kind = Kind::OTHER;
    };

    /// Throws HEXUserException "The directory 'PATH' cannot be read: REASON".
    explicit HUTFolder(const std::string& path);
    ~HUTFolder();
    HUTFolder(const HUTFolder&) = delete;
    HUTFolder& operator=(const HUTFolder&) = delete;

    /// What is in the directory of that path below the folder, "" being the folder itself; names in
    /// the order of their bytes. Throws as the constructor does.
    HSTVector<Entry> list(const std::string& below) const;
    /// A descriptor of the regular file of that path below the folder, opened for reading; the
    /// caller closes it. -1 with errno set when there is none to be opened, ELOOP for a link; errno
    /// is 0 for what is no regular file. Waits for nobody, such as the writer of a named pipe.
    int open(const std::string& below) const;
    /// The folder's path, "/" and `below`.
    std::string pathOf(const std::string& below) const;

  private:
    std::string path_;
    int folder_ = -1;
};
