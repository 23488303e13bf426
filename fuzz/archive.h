// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "mav_host/HEXError.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformCheck.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/PlatformParseException.h"
#include "support.h"

namespace fuzz {

/// Does the work, which may be refused.
template <class Work>
void refusable(Work work) {
    try {
        work();
    } catch (const HEXError&) {
        // As the input deserves.
    } catch (const mav_platform::PlatformParseException&) {
        // So does a description that does not parse.
    }
}

/// Packs the members into an archive of that name and answers its path.
inline std::string archive(const std::string& name, const HSTVector<HUTZip::Source>& members) {
    std::string path = surroundings().dir() + "/" + name;
    std::filesystem::remove(path);
    HUTZip::create(path, members);
    return path;
}

/// Loads the platform, whose document is JSON, and checks it.
inline void usePlatform(const std::string& path) {
    using mav_platform::PlatformLoader;
    refusable([&] {
        const auto platform = PlatformLoader(path, PlatformLoader::HW_METADATA_AUTO).load();
        if (platform) requireJson(platform->toJSONString());
    });
    mav_platform::PlatformCheck::run(path);
}

/// Reads all that a hardware archive holds: members, digest, document, and what a check finds.
inline void useArchive(const std::string& path) {
    refusable([&] {
        const mav_host::ZipArchive archive(path);
        for (const auto& member : archive.members()) {
            refusable([&] { archive.read(member.name, std::uint64_t{1} << 26); });
        }
        HUTZip::verifyDigest(path);
    });
    usePlatform(path);
}

}  // namespace fuzz
