// SPDX-License-Identifier: Apache-2.0
// A platform description: what is read makes a document that is JSON.
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformXMLReader.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    HMAVPlatform platform;
    HMAVPlatformXMLReader reader(fuzz::file("card.qpfm", data, size), &platform);
    const bool ok = reader.parseFile();
    fuzz::require(ok == reader.getErrorMsg().empty(), "an answer without its reason");
    fuzz::requireJson(platform.toJSONString());
    return 0;
}
