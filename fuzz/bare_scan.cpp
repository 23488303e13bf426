// SPDX-License-Identifier: Apache-2.0
// A directory with two archives that no description accompanies: one is the input, one its copy.
#include <memory>
#include <vector>

#include "archive.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVHardwarePlatformParser.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string dir = fuzz::freshDir("bare");
    fuzz::file("bare/a.pka", data, size);
    fuzz::file("bare/b.dsa", data, size);
    for (const bool filtered : {false, true}) {
        HMAVHardwarePlatformParser::Platforms platforms;
        HMAVHardwarePlatformParser::Containers seen;
        HMAVHardwarePlatformParser::loadBareHardwarePlatforms({dir}, platforms, seen, filtered);
        std::vector<std::unique_ptr<HMAVPlatform>> owned;
        for (const auto& entry : seen) owned.emplace_back(entry.second);
        fuzz::require(platforms.size() <= seen.size(), "more platforms than archives");
        for (const auto& container : owned) {
            fuzz::refusable([&] { fuzz::requireJson(container->toJSONString()); });
        }
    }
    return 0;
}
