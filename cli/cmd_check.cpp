// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_host/HI18N.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using mav::platform::NativeCatalogService;

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

void refuseWrongUse(const cli::CheckOptions& options) {
    if (options.preSynth && options.archive)
        throw cli::UsageError("--presynth and --archive are different questions; give one of them.",
                              "check");
    if (!options.toolRelease.empty() && !isRelease(options.toolRelease))
        throw cli::UsageError("'" + cli::printable(options.toolRelease) +
                                  "' is no release; give a year and a number, such as 2026.1.",
                              "check");
}

Answer ask(const NativeCatalogService& service, const cli::CheckOptions& options,
           const std::string& file) {
    const auto loader = cli::loadFile("check", file);
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
    const std::string reason = answer.reason.empty() ? "" : ". " + cli::printable(answer.reason);
    return cli::printable(answer.file) + ": " + verdict + reason + "\n";
}

std::string json(const std::vector<Answer>& answers) {
    mav_platform::JSONObjectWriter writer;
    writer.addList("platforms", [&](mav_platform::JSONListWriter& list) {
        for (const Answer& answer : answers) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("file", HI18N_convertToUTF8(answer.file));
                item.addKey("supported", answer.supported);
                item.addKey("reason", answer.reason);
            });
        }
    });
    return writer.text();
}

}  // namespace

bool cli::runCheck(const CheckOptions& options) {
    refuseWrongUse(options);
    NativeCatalogService service;
    if (!options.toolRelease.empty()) service.setTestCompilerVersion_(options.toolRelease);
    std::vector<Answer> answers;
    std::string failure;
    for (const std::string& file : options.files) {
        try {
            answers.push_back(ask(service, options, file));
            if (!options.json) writeAnswer(line(answers.back()));
        } catch (const Failure& error) {
            if (!failure.empty()) complain(failure);
            failure = error.what();
        }
    }
    if (options.json) writeAnswer(json(answers));
    if (!failure.empty()) throw Failure(failure);
    return std::all_of(answers.begin(), answers.end(),
                       [](const Answer& answer) { return answer.supported; });
}
