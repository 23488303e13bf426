// SPDX-License-Identifier: Apache-2.0
#include "ValidateForms.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>

#include "Output.h"
#include "RulePages.h"
#include "mav_host/HI18N.h"
#include "mav_platform/JSONValue.h"

namespace cli {
namespace {

using mav_platform::CheckFinding;
using mav_platform::CheckRule;
using mav_platform::JSONValue;
using mav_platform::PlatformCheck;

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

JSONValue message(const std::string& text) {
    return JSONValue::object().add("text", text);
}

/// The page about the rule without its heading; nothing of it is lost where it is shown plainly.
std::string helpOf(const std::string& rule) {
    const std::string_view page = rulePage(rule);
    const std::size_t heading = std::min(page.find("# "), page.size());
    const std::size_t end = std::min(page.find("\n\n", heading), page.size());
    std::string_view body = page.substr(end);
    while (body.starts_with('\n')) body.remove_prefix(1);
    return std::string(body.substr(0, body.find("\n## ")));
}

JSONValue rules() {
    JSONValue list = JSONValue::list();
    for (const CheckRule& rule : PlatformCheck::rules()) {
        const std::string help = helpOf(rule.name);
        list.add(
            JSONValue::object()
                .add("id", rule.name)
                .add("shortDescription", message(rule.summary))
                .add("help", message(help).add("markdown", help))
                .add("defaultConfiguration",
                     JSONValue::object().add("level", PlatformCheck::severityText(rule.severity))));
    }
    return list;
}

std::size_t ruleIndex(const std::string& name) {
    const auto& all = PlatformCheck::rules();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const CheckRule& rule) { return rule.name == name; });
    return static_cast<std::size_t>(found - all.begin());
}

/// The files of a run; a member stands behind the archive that it is in.
class Artifacts {
  public:
    /// The number of the file that the finding is about.
    std::size_t of(const CheckFinding& finding) {
        if (finding.member.empty()) return plain(finding.file);
        const std::string archive =
            finding.file.substr(0, finding.file.size() - finding.member.size() - 1);
        const std::size_t parent = plain(archive);
        const auto [known, isNew] = numbers_.emplace(std::pair(parent + 1, finding.member), next());
        if (isNew) {
            list_.add(JSONValue::object()
                          .add("location", location(text("/", uri(finding.member))))
                          .add("parentIndex", parent));
        }
        return known->second;
    }
    JSONValue take() { return std::move(list_); }

    static JSONValue location(const std::string& uri) {
        return JSONValue::object().add("uri", uri);
    }
    /// Of a member the path inside its archive.
    static std::string uriOf(const CheckFinding& finding) {
        return finding.member.empty() ? uri(finding.file) : text("/", uri(finding.member));
    }

  private:
    std::size_t next() const { return numbers_.size(); }
    std::size_t plain(const std::string& file) {
        const auto [known, isNew] = numbers_.emplace(std::pair(std::size_t{0}, file), next());
        if (isNew) list_.add(JSONValue::object().add("location", location(uri(file))));
        return known->second;
    }

    JSONValue list_ = JSONValue::list();
    /// By the archive's number and 1, or 0, and the path.
    std::map<std::pair<std::size_t, std::string>, std::size_t> numbers_;
};

JSONValue place(const CheckFinding& finding, Artifacts& artifacts) {
    const std::size_t index = artifacts.of(finding);
    JSONValue physical = JSONValue::object();
    physical.add("artifactLocation",
                 Artifacts::location(Artifacts::uriOf(finding)).add("index", index));
    if (finding.line > 0) {
        JSONValue region = JSONValue::object().add("startLine", finding.line);
        if (finding.column16 > 0) region.add("startColumn", finding.column16);
        physical.add("region", std::move(region));
    }
    JSONValue made = JSONValue::object().add("physicalLocation", std::move(physical));
    if (!finding.member.empty()) {
        made.add("logicalLocations", JSONValue::list().add(JSONValue::object().add(
                                         "fullyQualifiedName", finding.file)));
    }
    return made;
}

/// Tells findings apart by what stands at their place, not by its line.
class Fingerprints {
  public:
    std::string of(const CheckFinding& finding) {
        std::string_view line = finding.source;
        while (line.starts_with(' ') || line.starts_with('\t')) line.remove_prefix(1);
        while (line.ends_with(' ') || line.ends_with('\t')) line.remove_suffix(1);
        const std::string key = text(finding.rule, "\n", finding.file, "\n",
                                     line.empty() ? std::string_view(finding.text) : line);
        return hex(key) + ":" + std::to_string(++seen_[key]);
    }

  private:
    /// FNV-1a of 64 bits.
    static std::string hex(std::string_view text) {
        static constexpr char DIGITS[] = "0123456789abcdef";
        std::uint64_t hash = 0xcbf29ce484222325U;
        for (const char c : text) {
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
        }
        std::string made;
        for (unsigned shift = 64; shift > 0; shift -= 4) made += DIGITS[hash >> (shift - 4) & 15U];
        return made;
    }

    std::map<std::string, std::size_t> seen_;
};

JSONValue results(const Checked& checked, Artifacts& artifacts) {
    JSONValue list = JSONValue::list();
    Fingerprints fingerprints;
    for (const CheckFinding& finding : checked.findings) {
        list.add(JSONValue::object()
                     .add("ruleId", finding.rule)
                     .add("ruleIndex", ruleIndex(finding.rule))
                     .add("level", PlatformCheck::severityText(finding.severity))
                     .add("message", message(finding.text))
                     .add("locations", JSONValue::list().add(place(finding, artifacts)))
                     .add("partialFingerprints",
                          JSONValue::object().add("place/v1", fingerprints.of(finding))));
    }
    return list;
}

/// The text inside XML; characters that no XML document may hold as "?".
std::string escaped(const std::string& text) {
    std::string made;
    for (const char c : HI18N_convertToUTF8(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '<') {
            made += "&lt;";
        } else if (c == '&') {
            made += "&amp;";
        } else if (c == '"') {
            made += "&quot;";
        } else {
            made += byte < 0x20 && c != '\n' ? '?' : c;
        }
    }
    return made;
}

std::string placeText(const CheckFinding& finding) {
    std::string made = finding.file;
    if (finding.line > 0) made.append(":").append(std::to_string(finding.line));
    if (finding.column > 0) made.append(":").append(std::to_string(finding.column));
    return made + ": " + finding.text;
}

/// The findings of a rule in a file.
std::string testCase(const std::string& file, const std::vector<const CheckFinding*>& findings,
                     CheckFinding::Severity failOn, bool& fails) {
    std::string lines;
    fails = false;
    for (const CheckFinding* finding : findings) {
        lines += placeText(*finding) + "\n";
        fails = fails || finding->severity <= failOn;
    }
    const std::string& rule = findings.front()->rule;
    const std::string body =
        fails ? text("<failure type=\"", rule, "\" message=\"", escaped(findings.front()->text),
                     "\">", escaped(lines), "</failure>")
              : text("<system-out>", escaped(lines), "</system-out>");
    return text("    <testcase classname=\"", escaped(file), "\" name=\"", rule, "\">", body,
                "</testcase>\n");
}

}  // namespace

std::size_t count(const Checked& checked, CheckFinding::Severity severity) {
    std::size_t sum = 0;
    for (const CheckFinding& finding : checked.findings) {
        if (finding.severity == severity) sum += std::max<std::size_t>(finding.more, 1);
    }
    return sum;
}

std::string sarif(const Checked& checked) {
    Artifacts artifacts;
    JSONValue found = results(checked, artifacts);
    JSONValue driver = JSONValue::object().add("name", "mav validate").add("version", MAV_VERSION);
    driver.add("rules", rules());
    JSONValue run = JSONValue::object();
    run.add("tool", JSONValue::object().add("driver", std::move(driver)));
    run.add("columnKind", "utf16CodeUnits");
    run.add("artifacts", artifacts.take());
    run.add("results", std::move(found));
    return JSONValue::object()
        .add("version", "2.1.0")
        .add("$schema", "https://json.schemastore.org/sarif-2.1.0.json")
        .add("runs", JSONValue::list().add(std::move(run)))
        .text();
}

std::string junit(const Checked& checked, CheckFinding::Severity failOn) {
    std::map<std::string, std::map<std::string, std::vector<const CheckFinding*>>> byFile;
    std::vector<std::string> files = checked.files;
    for (const std::string& file : files) byFile[file];
    for (const CheckFinding& finding : checked.findings) {
        if (byFile.count(finding.file) == 0) files.push_back(finding.file);
        byFile[finding.file][finding.rule].push_back(&finding);
    }
    std::string suites;
    std::size_t tests = 0, failures = 0;
    for (const std::string& file : files) {
        std::string cases;
        std::size_t own = 0, failed = 0;
        for (const auto& [rule, findings] : byFile[file]) {
            bool fails = false;
            cases += testCase(file, findings, failOn, fails);
            ++own;
            failed += fails ? 1 : 0;
        }
        if (failed == 0) {
            cases += text("    <testcase classname=\"", escaped(file), "\" name=\"valid\"/>\n");
            ++own;
        }
        suites += text("  <testsuite name=\"", escaped(file), "\" tests=\"", std::to_string(own),
                       "\" failures=\"", std::to_string(failed), "\" errors=\"0\">\n", cases,
                       "  </testsuite>\n");
        tests += own;
        failures += failed;
    }
    return text(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"mav validate\" tests=\"",
        std::to_string(tests), "\" failures=\"", std::to_string(failures), "\" errors=\"0\">\n",
        suites, "</testsuites>\n");
}

std::string context(const CheckFinding& finding) {
    if (finding.source.empty()) return {};
    const std::string number = std::to_string(finding.line);
    std::string line = finding.source;
    std::replace(line.begin(), line.end(), '\t', ' ');
    std::string lines = text("  ", number, " | ", printable(line), "\n");
    if (finding.sourceColumn == 0) return lines;
    const std::string before =
        printable(std::string_view(line).substr(0, finding.sourceColumn - 1));
    return text(lines, std::string(number.size() + 2, ' '), " | ",
                std::string(columns(before), ' '), "^\n");
}

}  // namespace cli
