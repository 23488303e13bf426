// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <unordered_map>

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
    std::unordered_map<std::string, std::string> canonical_;
    std::unordered_map<std::string, mav_host::ZipArchive> byPath_;
};

}  // namespace mav_platform
