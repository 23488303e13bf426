// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_host/HEXError.h"
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

std::shared_ptr<HMAVPlatform> load(const std::string& file, PlatformLoader::HwMetadataMode mode) {
    const std::string subject = "cannot load '" + cli::printable(file) + "'";
    try {
        PlatformLoader loader(file, mode);
        if (auto platform = loader.load()) return platform;
    } catch (const HEXFileNotFoundException&) {
        throw cli::Failure(subject +
                           ": nothing is there. Check the path; a platform is a .qpfm, "
                           ".pka, .dsa or .spfm file.");
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw cli::Failure(subject + ": " + cli::clause(error.what()) +
                           ". Correct what the messages name and run the command again.");
    }
    throw cli::Failure(subject +
                       ". Correct what the messages above name and run the command "
                       "again.");
}

}  // namespace

void cli::runJson(const JsonOptions& options) {
    if (options.file.empty())
        throw UsageError("FILE is empty; give the path of a platform file.", "json");
    const auto platform = load(options.file, metadataMode(options.metadata));
    mav_platform::JSONObjectWriter writer;
    if (options.shortForm) {
        writer.addKey("uniqueName", platform->getUniqueName());
        writer.addKey("file", platform->getPlatformFile());
        writer.addKey("description", platform->getDescription());
    } else {
        writer.writeObject(platform.get());
    }
    writeAnswer(writer.textView());
}
