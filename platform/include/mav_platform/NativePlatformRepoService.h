// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "mav_host/Export.h"
#include "mav_platform/PlatformRepoService.h"

namespace mav::platform {

/// The service over the file system of this process. Holds nothing.
class MAV_API NativePlatformRepoService : public PlatformRepoService {
  public:
    ~NativePlatformRepoService() override;

    /// Appends, canonical, what exists of "/opt/tarvek/platforms" and then of each application
    /// root's "platforms" and "base_platforms". Duplicates stay.
    void getDefaultPlatformLookupDirs(std::vector<std::string>& out) override;
    /// The directories, then on request the default ones, in canonical form and joined by ":". What
    /// is no directory, or was there before, is left out; without any the text is empty.
    std::string getPlatformRepoPath(std::vector<std::string>& dirs, bool withDefaults) override;
    /// A name that is an existing file gives its canonical path alone. Any other name picks, in
    /// each directory and all levels below, the ".qpfm" files of that stem, ignoring case; an empty
    /// one picks all. Links are followed. Answers paths as walked, with `firstOnly` at most one.
    /// "Exception: " and the reason go to standard error for a directory that cannot be walked to
    /// its end; the others are still searched.
    void getQpfmFiles(const std::string& name, const std::string& repoPath,
                      std::vector<std::string>& out) override;
    void getQpfmFiles(const std::string& name, const std::vector<std::string>& dirs, bool firstOnly,
                      std::vector<std::string>& out) override;

  private:
    static void splitToFullDirs_(const std::string& text, std::vector<std::string>& out);
    static void addIfExists_(const std::string& path, std::vector<std::string>& out);
};

}  // namespace mav::platform
