// SPDX-License-Identifier: Apache-2.0
#include "archive/memberFiles.h"

#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVHardwarePlatform.h"

namespace mav_platform {

std::string memberOf(const HMAVHardwarePlatform& platform, const std::string& member) {
    if (!platform.isChildHardwareEmuPlatform()) return member;
    return HMAVHardwarePlatform::getHwEmuDir() + "/" + member;
}

bool extractMember(const std::string& archive, const std::string& member,
                   const std::string& destinationPath) {
    return HUTZip::containsFile(archive, member) &&
           HUTZip::extractAs(archive, member, destinationPath);
}

}  // namespace mav_platform
