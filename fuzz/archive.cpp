// SPDX-License-Identifier: Apache-2.0
// A whole hardware archive: its members, its digest, its extraction, and the road to the document.
#include "json/Document.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformCheck.h"
#include "mav_platform/PlatformLoader.h"
#include "support.h"

using mav_platform::PlatformLoader;

namespace {

template <class Work>
void refusable(Work work) {
    try {
        work();
    } catch (const HEXError&) {
        // Refused, as it may be.
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::file("card.pka", data, size);
    refusable([&] {
        const mav_host::ZipArchive archive(path);
        for (const auto& member : archive.members()) {
            refusable([&] { archive.read(member.name, std::uint64_t{1} << 26); });
        }
        HUTZip::verifyDigest(path);
    });
    refusable([&] {
        const auto platform = PlatformLoader(path, PlatformLoader::HW_METADATA_AUTO).load();
        if (platform) mav_platform::json::Document(platform->toJSONString());
    });
    mav_platform::PlatformCheck::run(path);
    return 0;
}
