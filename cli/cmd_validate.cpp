// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <set>

#include "Command.h"
#include "Output.h"
#include "RulePages.h"
#include "Screen.h"
#include "Suggest.h"
#include "mav_host/HI18N.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/PlatformCheck.h"

namespace {

using mav_platform::CheckFinding;
using mav_platform::CheckRule;
using mav_platform::PlatformCheck;
using Findings = HSTVector<CheckFinding>;

/// The number of errors, with those that are not shown one by one.
std::size_t errorsOf(const Findings& findings) {
    std::size_t count = 0;
    for (const CheckFinding& finding : findings) {
        if (finding.severity == CheckFinding::ERROR)
            count += std::max<std::size_t>(finding.more, 1);
    }
    return count;
}

std::string plain(const Findings& findings, bool color) {
    static constexpr std::array<const char*, 3> COLORS{"\033[1;31m", "\033[1;33m", "\033[1;36m"};
    std::string text;
    for (const CheckFinding& finding : findings) {
        const std::string severity = PlatformCheck::severityText(finding.severity);
        text += cli::printable(finding.file);
        if (finding.line > 0) text.append(":").append(std::to_string(finding.line));
        if (finding.column > 0) text.append(":").append(std::to_string(finding.column));
        text += ": ";
        text += color ? COLORS[finding.severity] + severity + "\033[0m" : severity;
        text.append(": ").append(cli::clause(finding.text));
        text.append(" [").append(finding.rule).append("]\n");
    }
    return text;
}

std::string json(const Findings& findings) {
    mav_platform::JSONObjectWriter writer;
    writer.addKey("errors", static_cast<unsigned>(errorsOf(findings)));
    writer.addList("findings", [&](mav_platform::JSONListWriter& list) {
        for (const CheckFinding& finding : findings) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("file", HI18N_convertToUTF8(finding.file));
                item.addKey("line", static_cast<unsigned>(finding.line));
                item.addKey("column", static_cast<unsigned>(finding.column));
                item.addKey("severity", PlatformCheck::severityText(finding.severity));
                item.addKey("rule", finding.rule);
                item.addKey("text", HI18N_convertToUTF8(finding.text));
            });
        }
    });
    return cli::withEmptyLists(writer.text(), {{"findings", findings.empty()}});
}

std::string quoted(std::string_view text) {
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result.append(1, '\\').append(1, c);
        } else if (byte < 0x20) {
            result.append("\\u00").append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 15U]);
        } else {
            result += c;
        }
    }
    return result + '"';
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

/// SARIF 2.1.0, the static analysis results interchange format of OASIS. Its numbers are numbers,
/// which the library's writer, made for the platform document, does not write.
std::string sarif(const Findings& findings) {
    std::string text =
        "{\n  \"version\": \"2.1.0\",\n"
        "  \"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
        "  \"runs\": [{\n    \"tool\": {\"driver\": {\"name\": \"mav validate\", "
        "\"version\": \"" MAV_VERSION "\", \"rules\": [";
    const char* comma = "\n";
    for (const CheckRule& rule : PlatformCheck::rules()) {
        text.append(comma).append("      {\"id\": ").append(quoted(rule.name));
        text.append(", \"shortDescription\": {\"text\": ")
            .append(quoted(rule.summary))
            .append("}}");
        comma = ",\n";
    }
    text += "\n    ]}},\n    \"results\": [";
    comma = "\n";
    for (const CheckFinding& finding : findings) {
        text.append(comma).append("      {\"ruleId\": ").append(quoted(finding.rule));
        text.append(", \"level\": ").append(quoted(PlatformCheck::severityText(finding.severity)));
        text.append(", \"message\": {\"text\": ").append(quoted(HI18N_convertToUTF8(finding.text)));
        text.append("}, \"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": ");
        text.append(quoted(uri(finding.file))).append("}");
        if (finding.line > 0) {
            text.append(", \"region\": {\"startLine\": ").append(std::to_string(finding.line));
            if (finding.column > 0) {
                text.append(", \"startColumn\": ").append(std::to_string(finding.column));
            }
            text += '}';
        }
        text += "}}]}";
        comma = ",\n";
    }
    return text + "\n    ]\n  }]\n}\n";
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

void explain(const std::string& rule) {
    const std::string_view page = cli::rulePage(rule);
    if (page.empty()) {
        std::vector<std::string> names;
        for (const CheckRule& known : PlatformCheck::rules()) names.push_back(known.name);
        std::string list;
        for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
        const std::string meant = cli::nearest(rule, names);
        throw cli::UsageError("unknown rule '" + cli::printable(rule) + "': there are " + list +
                                  "." + (meant.empty() ? "" : " Did you mean '" + meant + "'?"),
                              "validate");
    }
    cli::writeAnswer(page.substr(page.find("# ")));
}

}  // namespace

bool cli::runValidate(const ValidateOptions& options) {
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
    const bool color = wantsColor(options.color, "validate");
    Findings all;
    for (const std::string& file : options.files) {
        Findings findings = PlatformCheck::run(file);
        // People see the findings as they come.
        if (!options.json && !options.sarif) writeAnswer(plain(findings, color));
        std::move(findings.begin(), findings.end(), std::back_inserter(all));
    }
    if (options.json) writeAnswer(json(all));
    if (options.sarif) writeAnswer(sarif(all));
    const std::size_t errors = errorsOf(all);
    if (errors > 0) complain(summary(all, errors));
    return errors == 0;
}
