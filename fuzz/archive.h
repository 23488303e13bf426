// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "mav_host/HEXError.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformCheck.h"
#include "mav_platform/PlatformLoader.h"
#include "support.h"

namespace fuzz {

/// Does the work, which may be refused.
template <class Work>
void refusable(Work work) {
    try {
        work();
    } catch (const HEXError&) {
        // As the input deserves.
    }
}

/// Reads all that a hardware archive holds: members, digest, document, and what a check finds.
inline void useArchive(const std::string& path) {
    using mav_platform::PlatformLoader;
    refusable([&] {
        const mav_host::ZipArchive archive(path);
        for (const auto& member : archive.members()) {
            refusable([&] { archive.read(member.name, std::uint64_t{1} << 26); });
        }
        HUTZip::verifyDigest(path);
    });
    refusable([&] {
        const auto platform = PlatformLoader(path, PlatformLoader::HW_METADATA_AUTO).load();
        if (platform) requireJson(platform->toJSONString());
    });
    mav_platform::PlatformCheck::run(path);
}

}  // namespace fuzz
