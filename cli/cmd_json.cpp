// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/PlatformLoader.h"

namespace cli {
namespace {

using mav_platform::PlatformLoader;

constexpr const char* NOTES =
    "A FILE ending in .pka or .dsa is read as a hardware archive, one ending in .spfm as a\n"
    "software platform, any other as a platform description (.qpfm).\n"
    "Standard output carries the JSON text alone; messages go to standard error.\n";

struct Options {
    std::string file;
    std::string metadata;
    bool shortForm = false;
};

PlatformLoader::HwMetadataMode metadataMode(const std::string& text) {
    if (text == "json") return PlatformLoader::HW_METADATA_PRIMARY_JSON;
    if (text == "xml") return PlatformLoader::HW_METADATA_XML;
    return PlatformLoader::HW_METADATA_AUTO;
}

void run(const Options& options) {
    const auto loader = loadFile("json", options.file, metadataMode(options.metadata));
    const auto platform = loader->load();
    mav_platform::JSONObjectWriter writer;
    if (options.shortForm) {
        platform->toShortJSON(writer);
    } else {
        guarded("describe", options.file, [&] { writer.writeObject(platform.get()); });
    }
    writeData(writer.textView());
}

}  // namespace

void commands::json(Command& command) {
    command.description = "Print the whole description of a platform as JSON";
    command.notes = NOTES;
    command.examples = {{"mav json card.pka | jq -r .name", "a member of the document"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.flag("--short", options.shortForm, "Only uniqueName, file and description");
    command
        .option(
            "--metadata", &options.metadata, "auto|json|xml",
            "JSON member of hardware archives: auto (the alternative one, else the primary), json "
            "(the same where the primary is there), xml (none: that XML is not read)")
        .oneOf("metadata", {"auto", "json", "xml"});
}

}  // namespace cli
