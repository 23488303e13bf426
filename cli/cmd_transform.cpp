// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVNativeTransformService.h"

namespace {

constexpr std::uint64_t MAX_SIZE = std::uint64_t{1} << 30;

/// SPEC itself, or the content of the file that is named.
std::string specText(const std::string& spec) {
    const std::size_t start = spec.find_first_not_of(" \t\r\n");
    if (start != std::string::npos && spec[start] == '{') return spec;
    std::string text;
    cli::guarded("read", spec, [&] { text = HUTFileUtils::readWhole(spec, MAX_SIZE); });
    return text;
}

}  // namespace

void cli::runTransform(const TransformOptions& options) {
    const mav::platform::NativeTransformService service;
    const std::string spec = specText(options.spec);
    try {
        service.getTransformSpecAsJsonStr(spec);
    } catch (const HEXAlgException& error) {
        const std::string place = spec == options.spec ? "" : "in " + shown(options.spec) + ": ";
        throw UsageError(place + clause(error.what()) + ".", "transform");
    }
    const auto loader = loadFile("transform", options.file);
    writeAnswer(service.getAsJsonStr(loader.get(), spec));
}
