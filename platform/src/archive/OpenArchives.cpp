// SPDX-License-Identifier: Apache-2.0
#include "archive/OpenArchives.h"

namespace mav_platform {

const mav_host::ZipArchive& OpenArchives::open(const std::string& path) {
    const auto found = byPath_.find(path);
    if (found != byPath_.end()) return found->second;
    return byPath_.emplace(path, mav_host::ZipArchive(path)).first->second;
}

}  // namespace mav_platform
