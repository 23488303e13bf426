// SPDX-License-Identifier: Apache-2.0
// A transform specification: checked it stays what it is, and what it makes is JSON.
#include "archive.h"
#include "mav_platform/HMAVNativeTransformService.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = fuzz::archive(
        "transform.pka",
        {{"pka.json", "", R"({"vendor": "v", "systemClocks": [{"name": "a", "id": "0"},
            {"name": "b", "id": "1", "frequency": "250"}], "files": [{"type": "BIT", "name": "c"}]})"}});
    static mav_platform::PlatformLoader loader(path,
                                               mav_platform::PlatformLoader::HW_METADATA_AUTO);
    const mav::platform::NativeTransformService service;
    const std::string spec = fuzz::text(data, size);
    fuzz::refusable([&] {
        const std::string checked = service.getTransformSpecAsJsonStr(spec);
        const std::string made = service.getAsJsonStr(&loader, spec);
        fuzz::requireJson(made);
        fuzz::require(service.getAsJsonStr(&loader, checked) == made, "checked it says otherwise");
    });
    return 0;
}
