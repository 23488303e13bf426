// SPDX-License-Identifier: Apache-2.0
// The support list: whatever its container holds, a platform is judged and the judgement is JSON.
#include "archive.h"
#include "mav_host/xp.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "services/SupportList.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string platform = fuzz::archive(
        "support.pka", {{"pka.json", "", R"({"unifiedPlatform": true, "generatedVersion": "2020.1",
            "board": {"name": "b", "vendor": "v"}, "files": []})"}});
    static mav_platform::PlatformLoader loader(platform,
                                               mav_platform::PlatformLoader::HW_METADATA_AUTO);
    static const bool rooted = ::setenv("MAV_APP_ROOT", fuzz::surroundings().dir().c_str(), 1) == 0;
    fuzz::require(rooted, "no application root");
    fuzz::useKey();
    fuzz::freshDir("platforms");
    isl::iostreams::xp::write(mav::platform::supportListPath(), fuzz::text(data, size));
    fuzz::refusable([&] {
        fuzz::requireJson(mav::platform::NativeCatalogService().getAsJsonStr(&loader, true, true));
    });
    return 0;
}
