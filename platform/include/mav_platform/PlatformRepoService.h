// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "mav_host/Export.h"

namespace mav::platform {

/// Where platforms are looked for, and which description files are there. Nothing is loaded.
class MAV_API PlatformRepoService {
  public:
    virtual ~PlatformRepoService();

    /// Appends the directories that are searched without being named.
    virtual void getDefaultPlatformLookupDirs(std::vector<std::string>& out) = 0;
    /// The directories joined by ":".
    virtual std::string getPlatformRepoPath(std::vector<std::string>& dirs, bool withDefaults) = 0;
    /// Append the description files of that name below the directories, which `repoPath` joins by
    /// ":".
    virtual void getQpfmFiles(const std::string& name, const std::string& repoPath,
                              std::vector<std::string>& out) = 0;
    virtual void getQpfmFiles(const std::string& name, const std::vector<std::string>& dirs,
                              bool firstOnly, std::vector<std::string>& out) = 0;
};

}  // namespace mav::platform
