// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformDpeprjFileExtractor.h"

#include "load/extractMember.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/PlatformFileExtractor.h"

namespace {

/// The name of a member as one file name, so that no part of it leads anywhere. Different names
/// stay different.
std::string asFileName(const std::string& member) {
    std::string name;
    for (const char c : member) {
        if (c == '/') {
            name += "%2F";
        } else if (c == '%') {
            name += "%25";
        } else {
            name += c;
        }
    }
    return name;
}

}  // namespace

PlatformDpeprjFileExtractor::PlatformDpeprjFileExtractor(const HMAVHardwarePlatform& platform)
    : platform_(platform) {}

PlatformDpeprjFileExtractor::PlatformDPEPRJFile::PlatformDPEPRJFile(
    const HMAVHardwarePlatform& platform)
    : platform_(platform), name_(platform.getFile("DPEPRJ")) {
    const std::string owner = HUTFile::getIdentity(platform.getPlatformFile());
    if (name_.empty() || owner.empty()) return;
    path_ =
        HUTEnv::getHDITmpDir() + "/dpeprj-" + owner + "/" + asFileName(platform.memberName(name_));
}

bool PlatformDpeprjFileExtractor::PlatformDPEPRJFile::make() const {
    if (path_.empty()) return false;
    // The copy appears under its name only when it is complete.
    return HUTFile::isFile(path_) || PlatformFileExtractor(platform_).extract(name_, path_);
}

bool PlatformDpeprjFileExtractor::extract(const std::string& member,
                                          const std::string& destinationPath) const {
    return extractFile(member, destinationPath);
}

bool PlatformDpeprjFileExtractor::extractFile(const std::string& member,
                                              const std::string& destinationPath) const {
    const PlatformDPEPRJFile project(platform_);
    return project.make() && mav_platform::extractMember(
                                 project.getPath(), platform_.memberName(member), destinationPath);
}
