// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVNativeTransformService.h"

namespace cli {
namespace {

constexpr const char* NOTES =
    "SPEC is a JSON object. Each member makes one of the same name: its value is a path, or\n"
    "{\"each\": PATH, \"select\": {...}}, which makes an object for every element at PATH, with\n"
    "paths that begin at the element.\n";

struct Options {
    std::string file;
    std::string spec;  ///< JSON text, else the name of a file with it
};

constexpr std::uint64_t MAX_SIZE = std::uint64_t{1} << 30;

/// SPEC itself, or the content of the file that is named.
std::string specText(const std::string& spec) {
    const std::size_t start = spec.find_first_not_of(" \t\r\n");
    if (start != std::string::npos && spec[start] == '{') return spec;
    std::string text;
    guarded("read", spec, [&] { text = HUTFileUtils::readWhole(spec, MAX_SIZE); });
    return text;
}

void run(const Options& options) {
    const mav::platform::NativeTransformService service;
    const std::string spec = specText(options.spec);
    try {
        service.getTransformSpecAsJsonStr(spec);
    } catch (const HEXAlgException& error) {
        const std::string place = spec == options.spec ? "" : "in " + shown(options.spec) + ": ";
        throw UsageError(place + clause(error.what()) + ".", "transform");
    }
    const auto loader = loadFile("transform", options.file);
    writeData(service.getAsJsonStr(loader.get(), spec));
}

}  // namespace

void commands::transform(Command& command) {
    command.description = "Make another document from the description";
    command.notes = NOTES;
    command.examples = {{"mav transform card.pka '{\"part\": \"hardwarePlatform.fpgaPart\"}'",
                         "a document with one member"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.argument("SPEC", &options.spec, "Specification, or a file with it");
}

}  // namespace cli
