// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformFileExtractor.h"

#include "load/extractMember.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVHpfmUtl.h"

PlatformFileExtractor::PlatformFileExtractor(const HMAVHardwarePlatform& platform, bool rewriteHpfm)
    : platform_(platform), rewriteHpfm_(rewriteHpfm) {}

bool PlatformFileExtractor::extract(const std::string& member,
                                    const std::string& destinationPath) const {
    const std::string name = platform_.memberName(member);
    if (!mav_platform::extractMember(platform_.getPlatformFile(), name, destinationPath)) {
        return false;
    }
    if (rewriteHpfm_ && HUTFile::getExt(destinationPath) == "hpfm") {
        HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(destinationPath);
    }
    return true;
}
