// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/partitionsFault.h"

namespace cli {
namespace {

using mav_platform::JSONValue;
using mav_platform::partitionsFault;

using mav::platform::NativeCatalogService;

constexpr const char* NOTES =
    "One line for each FILE tells whether the tool release supports the platform, and why. The\n"
    "support list ROOT/platforms/achromatic is asked too, ROOT being the application root.\n"
    "Answers with 1 when a platform is not supported, with 3 when one does not load.\n";

struct Options {
    std::vector<std::string> files;
    bool preSynth = false;
    bool archive = false;
    bool json = false;
    std::string toolRelease;  ///< empty: that of the host
    std::string product;      ///< empty: that of the host
};

struct Answer {
    std::string file;
    bool supported = false;
    std::string reason;
};

bool isRelease(const std::string& text) {
    const auto digits = [](std::string_view part) {
        return !part.empty() && part.size() < 7 &&
               part.find_first_not_of("0123456789") == std::string_view::npos;
    };
    const std::size_t dot = text.find('.');
    const std::string_view view = text;
    return dot != std::string::npos && digits(view.substr(0, dot)) && digits(view.substr(dot + 1));
}

void refuseWrongUse(const Options& options) {
    if (options.preSynth && options.archive)
        throw UsageError("--presynth and --archive are different questions; give one of them.",
                         "check");
    if (!options.toolRelease.empty() && !isRelease(options.toolRelease))
        throw UsageError("'" + printable(options.toolRelease) +
                             "' is no release; give a year and a number, such as 2026.1.",
                         "check");
}

Answer ask(const NativeCatalogService& service, const Options& options, const std::string& file) {
    const auto loader = loadFile("check", file);
    const std::string fault = partitionsFault(*loader->load());
    if (!fault.empty()) return {file, false, fault};
    Answer answer{file, false, ""};
    if (options.preSynth) {
        answer.supported = service.isPreSynthPlatformSupported(loader.get(), answer.reason);
    } else if (options.archive) {
        answer.supported = service.canDsaBeOpened(loader.get(), answer.reason);
    } else {
        answer.supported = service.isUnderWarranty(loader.get(), answer.reason, options.product);
    }
    return answer;
}

std::string line(const Answer& answer) {
    const std::string verdict = answer.supported ? "supported" : "not supported";
    const std::string reason = answer.reason.empty() ? "" : ". " + printable(answer.reason);
    return printable(answer.file) + ": " + verdict + reason + "\n";
}

std::string json(const std::vector<Answer>& answers) {
    JSONValue list = JSONValue::list();
    for (const Answer& answer : answers) {
        list.add(JSONValue::object()
                     .add("file", answer.file)
                     .add("supported", answer.supported)
                     .addUnlessEmpty("reason", answer.reason));
    }
    return JSONValue::object().add("platforms", std::move(list)).text();
}

bool run(const Options& options) {
    refuseWrongUse(options);
    NativeCatalogService service;
    if (!options.toolRelease.empty()) service.setTestCompilerVersion_(options.toolRelease);
    std::vector<Answer> answers;
    bool failed = false;
    for (const std::string& file : options.files) {
        try {
            answers.push_back(ask(service, options, file));
            if (!options.json) writeAnswer(line(answers.back()));
        } catch (const Failure& error) {
            complain(error.what());
            failed = true;
        }
    }
    if (options.json) writeData(json(answers));
    if (failed) throw Failure("");
    return std::all_of(answers.begin(), answers.end(),
                       [](const Answer& answer) { return answer.supported; });
}

}  // namespace

void commands::check(Command& command) {
    command.description = "Tell whether platforms are supported";
    command.notes = NOTES;
    auto& options = command.runs(run);
    command.argument("FILE", &options.files, "Platform files");
    command.flag("--presynth", options.preSynth, "As pre-synthesis platforms");
    command.flag("--archive", options.archive, "As device support archives");
    command.option("--tool-release", &options.toolRelease, "RELEASE",
                   "Judge for this release, such as 2026.1, in place of the present one");
    command.option("--product", &options.product, "PRODUCT",
                   "Product that the support list is for");
    command.flag("--json", options.json, "Print JSON");
}

}  // namespace cli
