// SPDX-License-Identifier: Apache-2.0
#include "load/extractMember.h"

#include "mav_host/HUTZip.h"

namespace mav_platform {

bool extractMember(const std::string& archive, const std::string& member,
                   const std::string& destinationPath) {
    return HUTZip::containsFile(archive, member) &&
           HUTZip::extractAs(archive, member, destinationPath);
}

}  // namespace mav_platform
