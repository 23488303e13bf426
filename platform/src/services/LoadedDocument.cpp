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

Document read(std::string text) {
    try {
        return Document(std::move(text), {}, Document::MAX_OWN_DEPTH);
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        throw HEXAlgException(std::string("Failed to read platform: ") + error.what());
    }
}

}  // namespace

std::string documentTextOf(PlatformLoader* loader) {
    if (loader == nullptr) throw HEXAlgException("Failed to read platform: no loader was given");
    const auto platform = loader->load();
    if (!platform) {
        throw HEXAlgException(
            "Failed to read platform: it does not load, which the messages explain");
    }
    mav_platform::JSONObjectWriter writer;
    platform->toJSON(writer);
    return writer.text();
}

std::string documentTextOf(const std::string& platformFile) {
    PlatformLoader loader(platformFile, PlatformLoader::HW_METADATA_AUTO);
    return documentTextOf(&loader);
}

Document documentOf(PlatformLoader* loader) {
    return read(documentTextOf(loader));
}

Document documentOf(const std::string& platformFile) {
    return read(documentTextOf(platformFile));
}

}  // namespace mav::platform
