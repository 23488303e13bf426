// SPDX-License-Identifier: Apache-2.0
// Archive metadata: what is read makes a document that is JSON.
#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HPLPlatform.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    HPLPlatform platform;
    HMAVDsaJsonReader(&platform).parseJsonString(text);
    fuzz::requireJson(platform.toJSONString());
    return 0;
}
