// SPDX-License-Identifier: Apache-2.0
// A software platform: what is read makes a document that is JSON.
#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto platform = std::make_shared<HMAVSoftwarePlatform>();
    HMAVSoftwarePlatformXMLReader reader(fuzz::file("card.spfm", data, size), platform);
    const bool ok = reader.parseFile();
    fuzz::require(ok == reader.getErrorMsg().empty(), "an answer without its reason");
    fuzz::requireJson(platform->toJSONString());
    return 0;
}
