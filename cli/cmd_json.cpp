// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/PlatformLoader.h"

namespace {

using mav_platform::PlatformLoader;

PlatformLoader::HwMetadataMode metadataMode(const std::string& text) {
    if (text == "auto") return PlatformLoader::HW_METADATA_AUTO;
    if (text == "json") return PlatformLoader::HW_METADATA_PRIMARY_JSON;
    if (text == "xml") return PlatformLoader::HW_METADATA_XML;
    std::string sentence =
        "unknown metadata '" + cli::printable(text) + "': use auto, json or xml.";
    const std::string meant = cli::nearest(text, {"auto", "json", "xml"});
    if (!meant.empty()) sentence += " Did you mean '" + meant + "'?";
    throw cli::UsageError(sentence, "json");
}

}  // namespace

void cli::runJson(const JsonOptions& options) {
    const auto loader = loadFile("json", options.file, metadataMode(options.metadata));
    const auto platform = loader->load();
    mav_platform::JSONObjectWriter writer;
    if (options.shortForm) {
        writer.addKey("uniqueName", platform->getUniqueName());
        writer.addKey("file", platform->getPlatformFile());
        writer.addKey("description", platform->getDescription());
    } else {
        guarded("describe", options.file, [&] { writer.writeObject(platform.get()); });
    }
    writeAnswer(writer.textView());
}
