// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>
#include <optional>
#include <string>

#include "mav_host/HUTZip.h"

namespace mav_platform {

/// The archives that one load has opened, so that each is opened once however many readers ask.
class OpenArchives {
  public:
    /// The opened archive; throws as mav_host::ZipArchive does. Valid while this object lives.
    const mav_host::ZipArchive& open(const std::string& path);
    /// HUTFile::getCanonicalName, asked once for each path.
    const std::string& canonicalName(const std::string& path);

  private:
    struct Known {
        std::string path;
        std::string canonical;  ///< empty when it has not been asked
        std::optional<mav_host::ZipArchive> archive;
    };
    Known& known(const std::string& path);

    std::list<Known> known_;  ///< a handful at most
};

}  // namespace mav_platform
