// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <map>
#include <utility>

#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "repository/hardwareOf.h"

namespace {

using Platforms = HMAVPlatformUtils::Platforms;
using Version = std::pair<long, long>;
using Latest = std::map<std::string, Version>;

/// Vendor, board and name, kept apart by a byte that ends each.
std::string identityOf(const HMAVHardwarePlatform& hardware) {
    const char end = '\0';
    return hardware.getVendor() + end + hardware.getBoardId() + end + hardware.getName();
}

Version versionOf(const HMAVHardwarePlatform& hardware) {
    const std::string text = hardware.getVersion();
    const std::size_t dot = text.find('.');
    const long major = std::strtol(text.substr(0, dot).c_str(), nullptr, 10);
    if (dot == std::string::npos) return {major, 0};
    const std::string rest = text.substr(dot + 1);
    return {major, std::strtol(rest.substr(0, rest.find('.')).c_str(), nullptr, 10)};
}

/// The greatest version of each vendor, board and name.
Latest latestVersions(const Platforms& platforms) {
    Latest latest;
    for (const HMAVPlatform* platform : platforms) {
        const auto* const hardware = platform ? mav_platform::hardwareOf(*platform) : nullptr;
        if (hardware == nullptr) continue;
        const Version version = versionOf(*hardware);
        const auto [known, isNew] = latest.emplace(identityOf(*hardware), version);
        if (!isNew && known->second < version) known->second = version;
    }
    return latest;
}

bool isLatest(const HMAVPlatform* platform, const Latest& latest) {
    if (platform == nullptr) return false;
    const auto* const hardware = mav_platform::hardwareOf(*platform);
    if (hardware == nullptr) return true;
    const auto known = latest.find(identityOf(*hardware));
    return known == latest.end() || known->second <= versionOf(*hardware);
}

}  // namespace

bool HMAVPlatformUtils::isLatestVersion(const HMAVPlatform* platform, const Platforms& candidates) {
    return isLatest(platform, latestVersions(candidates));
}

bool HMAVPlatformUtils::isLatestVersion(const HMAVPlatform* platform) {
    Platforms candidates;
    HMAVPlatformMgr::getGlobal()->getAllPlatforms(candidates);
    return isLatestVersion(platform, candidates);
}

Platforms HMAVPlatformUtils::filterOutOldPlatforms(const Platforms& list) {
    const Latest latest = latestVersions(list);
    Platforms kept;
    for (HMAVPlatform* platform : list) {
        if (isLatest(platform, latest)) kept.push_back(platform);
    }
    return kept;
}
