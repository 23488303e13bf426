// SPDX-License-Identifier: Apache-2.0
#include "archive/OpenArchives.h"

#include <algorithm>

#include "mav_host/HUTFile.h"

namespace mav_platform {

OpenArchives::Known& OpenArchives::known(const std::string& path) {
    const auto found = std::find_if(known_.begin(), known_.end(),
                                    [&](const Known& one) { return one.path == path; });
    return found != known_.end() ? *found : known_.emplace_back(Known{path, "", std::nullopt});
}

const mav_host::ZipArchive& OpenArchives::open(const std::string& path) {
    Known& asked = known(path);
    if (asked.archive) return *asked.archive;
    // Platforms ask by the canonical name, whatever the archive was opened by; the file is shared.
    Known& named = known(canonicalName(path));
    if (!named.archive) named.archive.emplace(path);
    if (!asked.archive) asked.archive = named.archive;
    return *asked.archive;
}

const std::string& OpenArchives::canonicalName(const std::string& path) {
    Known& asked = known(path);
    if (asked.canonical.empty()) asked.canonical = HUTFile::getCanonicalName(path);
    return asked.canonical;
}

}  // namespace mav_platform
