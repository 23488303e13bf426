// SPDX-License-Identifier: Apache-2.0
#include <string_view>

#include "Command.h"
#include "Errors.h"
#include "Load.h"
#include "Output.h"
#include "Screen.h"
#include "mav_host/HUTEnv.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/JSONValue.h"

namespace cli {
namespace {

using mav_platform::JSONValue;

using mav::platform::checkItem;
using mav::platform::NativeCatalogService;
using mav::platform::SupportQuestion;
using mav::platform::Verdict;

constexpr const char* NOTES =
    "Asks whether the tool release supports a platform; 'mav validate' asks whether the platform "
    "is\n"
    "free of faults, 'mav verify' whether an archive still holds the bytes that were packed.\n"
    "One line for each FILE gives the verdict, the rule that decided and why. The support list\n"
    "ROOT/platforms/achromatic is asked too, ROOT being the application root. --matrix adds a "
    "line\n"
    "for each tool release from the platform's own to two years on.\n";

/// No argument can hold it, so that an empty release is told from none.
constexpr std::string_view OF_HOST("\0", 1);

struct Options {
    bool hasRelease() const { return toolRelease != OF_HOST; }

    std::vector<std::string> files;
    bool preSynth = false;
    bool archive = false;
    bool matrix = false;
    bool json = false;
    std::string toolRelease{OF_HOST};
    std::string product;  ///< empty: that of the host
};

struct Answer {
    std::string file;
    Verdict verdict;
    HSTVector<Verdict> matrix;
};

void refuseWrongUse(const Options& options) {
    if (options.preSynth && options.archive)
        throw UsageError("--presynth and --archive are different questions; give one of them.",
                         "check");
    if (options.hasRelease() && !HUTEnv::isRelease(options.toolRelease))
        throw UsageError("'" + printable(options.toolRelease) +
                             "' is no release; give a year and a number, such as 2026.1.",
                         "check");
    if (!options.hasRelease()) needToolRelease("check");
}

Answer ask(const NativeCatalogService& service, const Options& options, const std::string& file) {
    const SupportQuestion question = options.preSynth  ? SupportQuestion::PRE_SYNTH
                                     : options.archive ? SupportQuestion::ARCHIVE
                                                       : SupportQuestion::CARD;
    const auto loader = loadFile("check", file);
    Answer answer{file, service.judge(*loader, question), {}};
    if (options.matrix) answer.matrix = service.matrix(*loader, question);
    return answer;
}

std::string lines(const Answer& answer) {
    std::string text = printable(answer.file) + ": " + printable(answer.verdict.sentence()) + "\n";
    std::vector<Screen::Row> rows;
    for (const Verdict& verdict : answer.matrix)
        rows.push_back({verdict.toolRelease, verdict.word(), verdict.rule, verdict.reason});
    for (const std::string& line : Screen::lines({}, rows)) text += "    " + line + "\n";
    return text;
}

/// Asks about each file; what does not load is told and the others are asked all the same.
class Answers {
  public:
    explicit Answers(const Options& options) : options_(options) {
        if (options.hasRelease()) service_.setTestCompilerVersion_(options.toolRelease);
        if (!options.product.empty()) service_.setProduct_(options.product);
    }

    void add(const std::string& file) {
        try {
            const Answer answer = ask(service_, options_, file);
            good_ = good_ && answer.verdict.supported;
            if (!options_.json) writeAnswer(lines(answer));
            KeptReports::take();
            list_.add(checkItem(file, &answer.verdict, answer.matrix));
        } catch (const Failure& failure) {
            failed_ = true;
            JSONValue error = JSONValue::object();
            addError(error, failure.what());
            complain(failure.what());
            list_.add(checkItem(file, nullptr, {}, std::move(error)));
        }
    }

    bool end() {
        if (options_.json)
            writeData(JSONValue::answer("check").add("platforms", std::move(list_)).text());
        if (failed_) throw Ended{FAILED};
        return good_;
    }

  private:
    const Options& options_;
    NativeCatalogService service_;
    JSONValue list_ = JSONValue::list();
    bool good_ = true;
    bool failed_ = false;
};

bool run(const Options& options) {
    refuseWrongUse(options);
    Answers answers(options);
    for (const std::string& file : options.files) answers.add(file);
    return answers.end();
}

}  // namespace

void commands::check(Command& command) {
    command.description = "Tell whether a tool release supports platforms, and why";
    command.notes = NOTES;
    command.no = "a platform is not supported";
    command.failed = "a platform cannot be loaded; the others are judged all the same";
    command.examples = {
        {"mav check card.pka --tool-release 2027.1", "judge for another release than the present"},
        {"mav check card.pka --matrix", "how long the platform will be supported"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.files, "Platform files");
    command.flag("--presynth", options.preSynth, "As pre-synthesis platforms");
    command.flag("--archive", options.archive, "As device support archives");
    command.option("--tool-release", &options.toolRelease, "RELEASE",
                   "Judge for this release, such as 2026.1, in place of the present one");
    command.option("--product", &options.product, "PRODUCT",
                   "Product that the support list is for");
    command.flag("--matrix", options.matrix, "Also judge for each release up to two years on");
    command.typedJson(options.json);
}

}  // namespace cli
