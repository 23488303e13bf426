// SPDX-License-Identifier: Apache-2.0
#include "services/LoadedDocument.h"

#include <boost/property_tree/json_parser/error.hpp>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"

namespace mav::platform {

using mav_platform::PlatformLoader;
using mav_platform::json::Document;

namespace {

std::shared_ptr<HMAVPlatform> loaded(PlatformLoader* loader) {
    if (loader == nullptr) throw HEXAlgException("Failed to read platform: no loader was given");
    auto platform = loader->load();
    if (!platform) {
        throw HEXAlgException(
            "Failed to read platform: it does not load, which the messages explain");
    }
    return platform;
}

std::string textOf(const HMAVPlatform& platform) {
    mav_platform::JSONObjectWriter writer;
    platform.toJSON(writer);
    return writer.text();
}

}  // namespace

Document documentOf(const HMAVPlatform& platform) {
    if (auto document = mav_platform::json::compactDocument(platform)) return *std::move(document);
    std::string text = textOf(platform);
    try {
        return Document(std::move(text), {}, Document::MAX_OWN_DEPTH);
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        throw HEXAlgException(std::string("Failed to read platform: ") + error.what());
    }
}

Document documentOf(PlatformLoader* loader) {
    return documentOf(*loaded(loader));
}

Document documentOf(const std::string& platformFile) {
    PlatformLoader loader(platformFile, PlatformLoader::HW_METADATA_AUTO);
    return documentOf(&loader);
}

std::string documentTextOf(PlatformLoader* loader) {
    return textOf(*loaded(loader));
}

std::string documentTextOf(const std::string& platformFile) {
    PlatformLoader loader(platformFile, PlatformLoader::HW_METADATA_AUTO);
    return documentTextOf(&loader);
}

}  // namespace mav::platform
