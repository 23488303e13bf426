// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <array>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "RulePages.h"
#include "Screen.h"
#include "Suggest.h"
#include "ValidateForms.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/PlatformCheck.h"

namespace cli {
namespace {

using mav_platform::CheckFinding;
using mav_platform::CheckOptions;
using mav_platform::CheckRule;
using mav_platform::JSONValue;
using mav_platform::PlatformCheck;
using Findings = HSTVector<CheckFinding>;

constexpr const char* NOTES =
    "Looks at platform files and all that they refer to, of a directory at every description and\n"
    "archive below it, and prints each finding as FILE:LINE:COLUMN: SEVERITY: SENTENCE [RULE].\n"
    "A file '.mavcheck' beside a platform holds exceptions from the rules.\n"
    "Asks whether a platform is free of faults; 'mav verify' asks whether an archive still holds\n"
    "the bytes that were packed, 'mav check' whether a tool release supports a platform.\n";

struct Options {
    std::vector<std::string> files;
    bool json = false;
    bool sarif = false;
    bool context = false;
    bool errorsOnly = false;
    std::string failOn;
    std::vector<std::string> rules;  ///< RULE=SEVERITY
    std::string config;
    std::string junit;  ///< file to write
    std::string rule;   ///< to explain; nothing is validated then
    std::string color;
};

std::string plain(const Findings& findings, bool color) {
    static constexpr std::array<const char*, 3> COLORS{"\033[1;31m", "\033[1;33m", "\033[1;36m"};
    std::string text;
    for (const CheckFinding& finding : findings) {
        const std::string severity = PlatformCheck::severityText(finding.severity);
        text += printable(finding.file);
        if (finding.line > 0) text.append(":").append(std::to_string(finding.line));
        if (finding.column > 0) text.append(":").append(std::to_string(finding.column));
        text += ": ";
        text += color ? COLORS[finding.severity] + severity + "\033[0m" : severity;
        text.append(": ").append(clause(finding.text));
        text.append(" [").append(finding.rule).append("]\n");
        text += context(finding);
    }
    return text;
}

JSONValue orNull(std::size_t number) {
    return number > 0 ? JSONValue(number) : JSONValue(nullptr);
}

std::string json(const Checked& checked) {
    JSONValue list = JSONValue::list();
    for (const CheckFinding& finding : checked.findings) {
        list.add(JSONValue::object()
                     .addPath("file", finding.file)
                     .add("line", orNull(finding.line))
                     .add("column", orNull(finding.column))
                     .add("severity", PlatformCheck::severityText(finding.severity))
                     .add("rule", finding.rule)
                     .add("text", finding.text)
                     .add("more", finding.more));
    }
    return JSONValue::answer("validate")
        .add("errors", count(checked, CheckFinding::ERROR))
        .add("warnings", count(checked, CheckFinding::WARNING))
        .add("notes", count(checked, CheckFinding::NOTE))
        .add("findings", std::move(list))
        .text();
}

/// What the findings add up to, and how to go on.
std::string summary(const Checked& checked) {
    const auto counted = [](std::size_t count, const char* thing) {
        return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
    };
    const std::string looked = counted(checked.files.size(), "file") + " looked at: ";
    if (checked.findings.empty()) return looked + "no findings.";
    return looked + counted(count(checked, CheckFinding::ERROR), "error") + ", " +
           counted(count(checked, CheckFinding::WARNING), "warning") + ", " +
           counted(count(checked, CheckFinding::NOTE), "note") +
           ". 'mav validate --explain RULE' tells what a rule asks for.";
}

std::vector<std::string> ruleNames() {
    std::vector<std::string> names;
    for (const CheckRule& rule : PlatformCheck::rules()) names.push_back(rule.name);
    return names;
}

/// The page about a message of the library, by its number; empty for another text.
std::string messagePage(const std::string& number) {
    static constexpr mav_host::MessageRow ROWS[] = {
#define MAV_MESSAGE_ROW(NAME, LEVEL, MASK, ID, SENTENCE) {LEVEL, ComMsgMgr::MASK, ID, SENTENCE},
        MAV_MESSAGES(MAV_MESSAGE_ROW)
#undef MAV_MESSAGE_ROW
    };
    for (const mav_host::MessageRow& row : ROWS) {
        if (row.key() != number) continue;
        const bool tellsMore = row.sentence.find(';') != std::string_view::npos;
        const std::string severity(ComMsgMgr::severity({row.level, "platform", row.mask, {}, {}}));
        return text("# ", number, " (", severity, ")\n\nThe library reports:\n\n    ", row.sentence,
                    "\n\n%1 and the like stand for what the report is about. ",
                    tellsMore ? "What to do stands behind the semicolon."
                              : "'mav validate' names the place and what is wrong there.",
                    "\n");
    }
    return {};
}

std::vector<std::string> explainable() {
    std::vector<std::string> names = ruleNames();
#define MAV_MESSAGE_KEY(NAME, LEVEL, MASK, ID, SENTENCE) \
    names.emplace_back(mav_host::messages::NAME.key());
    MAV_MESSAGES(MAV_MESSAGE_KEY)
#undef MAV_MESSAGE_KEY
    return names;
}

void explain(const std::string& rule) {
    const std::string message = messagePage(rule);
    if (!message.empty()) {
        writeAnswer(message);
        return;
    }
    const std::string_view page = rulePage(rule);
    writeAnswer(page.substr(page.find("# ")));
}

/// Why nothing could be judged.
std::string unjudged(const Checked& checked) {
    std::string sentence = "nothing can be judged";
    if (!checked.findings.empty()) {
        const CheckFinding& first = checked.findings.front();
        sentence += ": '" + printable(first.file) + "': " + clause(first.text);
    }
    return sentence + ".";
}

void refuseMixture(const Options& options) {
    if (options.files.empty())
        throw UsageError("FILE is missing; name platform files, or a rule with --explain.",
                         "validate");
    if (options.json && options.sarif)
        throw UsageError("--json and --sarif are different outputs; give one of them.", "validate");
    for (const std::string& file : options.files) {
        if (file.empty())
            throw UsageError("FILE is empty; give the path of a platform file.", "validate");
    }
}

CheckOptions::Level levelOf(const std::string& text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    const std::string rule = text.substr(0, equals);
    const std::vector<std::string> names = ruleNames();
    if (std::find(names.begin(), names.end(), rule) == names.end())
        throw UsageError(refusal("unknown rule", rule, names), "validate");
    try {
        return {rule, PlatformCheck::severityOf(text.substr(std::min(equals + 1, text.size())))};
    } catch (const HEXUserException& error) {
        throw UsageError(withAdvice(error.what(), "") + " Write --rule " + rule + "=warning.",
                         "validate");
    }
}

CheckOptions checkOptions(const Options& options) {
    CheckOptions made;
    for (const std::string& rule : options.rules) made.levels.push_back(levelOf(rule));
    made.exceptions = options.config;
    if (options.errorsOnly) made.least = CheckFinding::ERROR;
    const bool isPlain = !options.json && !options.sarif;
    made.sources = options.sarif || (isPlain && (options.context || ::isatty(STDOUT_FILENO) == 1));
    return made;
}

void writeJunit(const Options& options, const Checked& checked, CheckFinding::Severity failOn) {
    if (options.junit.empty()) return;
    try {
        HUTFileUtils::writeWhole(options.junit, junit(checked, failOn));
    } catch (const HEXError& error) {
        throw Failure(withAdvice(error.what(), "Give a path that can be written."));
    }
}

bool run(const Options& options) {
    if (!options.rule.empty()) {
        if (!options.files.empty() || options.json || options.sarif)
            throw UsageError(
                "--explain only prints the page about a rule; leave out FILE, --json and --sarif.",
                "validate");
        explain(options.rule);
        return true;
    }
    refuseMixture(options);
    CheckOptions wanted = checkOptions(options);
    needToolRelease("validate");
    const bool isPlain = !options.json && !options.sarif;
    const bool color = wantsColor(options.color);
    const auto failOn =
        PlatformCheck::severityOf(options.failOn.empty() ? "error" : options.failOn).value();
    Checked checked;
    wanted.onFile = [&](const std::string& file) { checked.files.push_back(file); };
    const bool isJudged = PlatformCheck::run(options.files, wanted, [&](const Findings& findings) {
        // People see the findings as they come.
        if (isPlain) writeAnswer(plain(findings, color));
        checked.findings.insert(checked.findings.end(), findings.begin(), findings.end());
    });
    if (!isJudged) throw Failure(unjudged(checked));
    if (options.json) writeData(json(checked));
    if (options.sarif) writeData(sarif(checked));
    writeJunit(options, checked, failOn);
    const bool isGood =
        std::none_of(checked.findings.begin(), checked.findings.end(),
                     [&](const CheckFinding& finding) { return finding.severity <= failOn; });
    if (isPlain || !isGood) complain(summary(checked));
    return isGood;
}

}  // namespace

void commands::validate(Command& command) {
    command.description = "Find all faults of platforms and of what they refer to";
    command.notes = NOTES;
    command.no = "a finding is an error, or as serious as --fail-on says";
    command.failed = "none of the files can be read, or the result cannot be written";
    command.examples = {{"mav validate card.qpfm", "every finding, a line each"},
                        {"mav validate --fail-on warning --junit report.xml platforms",
                         "all platforms below a directory, for a build server"},
                        {"mav validate --explain digest", "the page about a rule"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.files, "Platform files, or directories with such").required =
        false;
    command.typedJson(options.json);
    command.flag("--sarif", options.sarif, "Print SARIF 2.1.0");
    command.option("--junit", &options.junit, "FILE", "Write a JUnit report to a file too").kind =
        ValueKind::FILES;
    command.flag("--context", options.context, "Show the line of each finding");
    command.flag("--errors-only", options.errorsOnly, "Leave out warnings and notes");
    command
        .option("--fail-on", &options.failOn, "note|warning|error",
                "Answer with 1 for findings from this severity on, else from error on")
        .oneOf("severity", {"note", "warning", "error"});
    command.option("--rule", &options.rules, "RULE=off|note|warning|error",
                   "Tell the findings of a rule otherwise, or not; may be repeated");
    command
        .option("--config", &options.config, "FILE",
                "File of exceptions, in place of '.mavcheck' beside each platform")
        .kind = ValueKind::FILES;
    command
        .option("--explain", &options.rule, "RULE",
                "Print the page about a rule, or about a message such as 74-63")
        .oneOf("rule", explainable());
    addColor(command, options.color, "When to colour");
}

}  // namespace cli
