// SPDX-License-Identifier: Apache-2.0
#include "archive/OpenArchives.h"

#include "mav_host/HUTFile.h"

namespace mav_platform {

const mav_host::ZipArchive& OpenArchives::open(const std::string& path) {
    const auto found = byPath_.find(path);
    if (found != byPath_.end()) return found->second;
    const mav_host::ZipArchive& opened =
        byPath_.emplace(path, mav_host::ZipArchive(path)).first->second;
    // Platforms ask by the canonical name, whatever the archive was opened by; the file is shared.
    byPath_.emplace(canonicalName(path), opened);
    return opened;
}

const std::string& OpenArchives::canonicalName(const std::string& path) {
    const auto found = canonical_.find(path);
    if (found != canonical_.end()) return found->second;
    return canonical_.emplace(path, HUTFile::getCanonicalName(path)).first->second;
}

}  // namespace mav_platform
