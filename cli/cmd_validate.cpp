// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <set>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "RulePages.h"
#include "Screen.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/PlatformCheck.h"

namespace cli {
namespace {

using mav_platform::JSONValue;

using mav_platform::CheckFinding;
using mav_platform::CheckRule;
using mav_platform::PlatformCheck;
using Findings = HSTVector<CheckFinding>;

constexpr const char* NOTES =
    "Looks at the platform file and all that it refers to, and prints every finding as\n"
    "FILE:LINE:COLUMN: SEVERITY: SENTENCE [RULE].\n"
    "Asks whether a platform is free of faults; 'mav verify' asks whether an archive still holds\n"
    "the bytes that were packed, 'mav check' whether a tool release supports a platform.\n";

struct Options {
    std::vector<std::string> files;
    bool json = false;
    bool sarif = false;
    std::string rule;  ///< to explain; nothing is validated then
    std::string color;
};

/// The number of findings, with those that are not shown one by one.
std::size_t count(const Findings& findings, CheckFinding::Severity severity) {
    std::size_t sum = 0;
    for (const CheckFinding& finding : findings) {
        if (finding.severity == severity) sum += std::max<std::size_t>(finding.more, 1);
    }
    return sum;
}

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
    }
    return text;
}

JSONValue orNull(std::size_t number) {
    return number > 0 ? JSONValue(number) : JSONValue(nullptr);
}

std::string json(const Findings& findings) {
    JSONValue list = JSONValue::list();
    for (const CheckFinding& finding : findings) {
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
        .add("errors", count(findings, CheckFinding::ERROR))
        .add("warnings", count(findings, CheckFinding::WARNING))
        .add("notes", count(findings, CheckFinding::NOTE))
        .add("findings", std::move(list))
        .text();
}

/// The path as a URI reference.
std::string uri(std::string_view path) {
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    static constexpr std::string_view FREE = "-._~/";
    std::string text = path.substr(0, 1) == "/" ? "file://" : "";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
                             (byte >= 'A' && byte <= 'Z') || FREE.find(c) != std::string_view::npos;
        if (isPlain) {
            text += c;
        } else {
            text.append("%").append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 15U]);
        }
    }
    return text;
}

JSONValue sarifText(const std::string& text) {
    return JSONValue::object().add("text", text);
}

JSONValue sarifPlace(const CheckFinding& finding) {
    JSONValue place = JSONValue::object();
    place.add("artifactLocation", JSONValue::object().add("uri", uri(finding.file)));
    if (finding.line > 0) {
        JSONValue region = JSONValue::object().add("startLine", finding.line);
        if (finding.column > 0) region.add("startColumn", finding.column);
        place.add("region", std::move(region));
    }
    return JSONValue::object().add("physicalLocation", std::move(place));
}

/// SARIF 2.1.0, the static analysis results interchange format of OASIS.
std::string sarif(const Findings& findings) {
    JSONValue rules = JSONValue::list();
    for (const CheckRule& rule : PlatformCheck::rules()) {
        rules.add(JSONValue::object()
                      .add("id", rule.name)
                      .add("shortDescription", sarifText(rule.summary)));
    }
    JSONValue results = JSONValue::list();
    for (const CheckFinding& finding : findings) {
        results.add(JSONValue::object()
                        .add("ruleId", finding.rule)
                        .add("level", PlatformCheck::severityText(finding.severity))
                        .add("message", sarifText(finding.text))
                        .add("locations", JSONValue::list().add(sarifPlace(finding))));
    }
    JSONValue driver = JSONValue::object().add("name", "mav validate").add("version", MAV_VERSION);
    driver.add("rules", std::move(rules));
    JSONValue run = JSONValue::object();
    run.add("tool", JSONValue::object().add("driver", std::move(driver)));
    run.add("results", std::move(results));
    return JSONValue::object()
        .add("version", "2.1.0")
        .add("$schema", "https://json.schemastore.org/sarif-2.1.0.json")
        .add("runs", JSONValue::list().add(std::move(run)))
        .text();
}

/// What the errors add up to, and how to go on.
std::string summary(const Findings& findings, std::size_t errors) {
    std::set<std::string> files;
    for (const CheckFinding& finding : findings) {
        if (finding.severity == CheckFinding::ERROR) files.insert(finding.file);
    }
    const auto counted = [](std::size_t count, const char* thing) {
        return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
    };
    return counted(errors, "error") + " in " + counted(files.size(), "file") +
           ". 'mav validate --explain RULE' tells what a rule asks for.";
}

std::vector<std::string> ruleNames() {
    std::vector<std::string> names;
    for (const CheckRule& rule : PlatformCheck::rules()) names.push_back(rule.name);
    return names;
}

void explain(const std::string& rule) {
    const std::string_view page = rulePage(rule);
    writeAnswer(page.substr(page.find("# ")));
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
    if (options.files.empty())
        throw UsageError("FILE is missing; name platform files, or a rule with --explain.",
                         "validate");
    if (options.json && options.sarif)
        throw UsageError("--json and --sarif are different outputs; give one of them.", "validate");
    for (const std::string& file : options.files) {
        if (file.empty())
            throw UsageError("FILE is empty; give the path of a platform file.", "validate");
    }
    needToolRelease("validate");
    const bool color = wantsColor(options.color);
    Findings all;
    for (const std::string& file : options.files) {
        Findings findings = PlatformCheck::run(file);
        // People see the findings as they come.
        if (!options.json && !options.sarif) writeAnswer(plain(findings, color));
        std::move(findings.begin(), findings.end(), std::back_inserter(all));
    }
    if (options.json) writeData(json(all));
    if (options.sarif) writeData(sarif(all));
    const std::size_t errors = count(all, CheckFinding::ERROR);
    if (errors > 0) complain(summary(all, errors));
    return errors == 0;
}

}  // namespace

void commands::validate(Command& command) {
    command.description = "Find all faults of platforms and of what they refer to";
    command.notes = NOTES;
    command.no = "a finding is an error";
    command.failed = "the result cannot be written";
    command.examples = {{"mav validate card.qpfm", "every finding, a line each"},
                        {"mav validate --explain digest", "the page about a rule"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.files, "Platform files").required = false;
    command.typedJson(options.json);
    command.flag("--sarif", options.sarif, "Print SARIF 2.1.0");
    command.option("--explain", &options.rule, "RULE", "Print the page about a rule")
        .oneOf("rule", ruleNames());
    addColor(command, options.color, "When to colour");
}

}  // namespace cli
