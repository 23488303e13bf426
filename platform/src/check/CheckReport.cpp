// SPDX-License-Identifier: Apache-2.0
#include "check/CheckReport.h"

#include <algorithm>
#include <boost/property_tree/json_parser/error.hpp>
#include <map>

#include "check/CheckPolicy.h"
#include "check/CheckSource.h"
#include "json/SyntaxError.h"
#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/Nearest.h"

namespace mav_platform {

namespace check {
namespace {

/// `lines` holds where each line begins.
Place placeAt(const std::string& file, const std::vector<std::size_t>& lines, std::size_t offset) {
    const auto next = std::upper_bound(lines.begin(), lines.end(), offset);
    return {file, static_cast<std::size_t>(next - lines.begin()), offset - *(next - 1) + 1};
}

}  // namespace

const CheckRule& Report::known(const std::string& rule) {
    const auto& rules = PlatformCheck::rules();
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const CheckRule& known) { return known.name == rule; });
    if (found == rules.end()) throw HEXAlgException("unknown rule " + rule);
    return *found;
}

bool Report::isFull(const std::string& rule, const std::string& file) const {
    const auto tally = tallies_.find(rule);
    if (tally == tallies_.end()) return false;
    const auto kept = tally->second.kept.find(file);
    return tally->second.all == LIMIT ||
           (kept != tally->second.kept.end() && kept->second == LIMIT_IN_FILE);
}

Report::Level Report::level(const CheckRule& rule, const std::string& file) {
    return policy_ != nullptr ? policy_->level(rule, file) : rule.severity;
}

void Report::addMore(const char* rule, const std::string& file, std::size_t count) {
    if (count == 0) return;
    const Level severity = level(known(rule), file);
    if (!severity) return;
    if (*severity == CheckFinding::ERROR) errors_ += count;
    tallies_[rule].more[file] += count;
}

void Report::add(const char* rule, const Place& place, std::string text) {
    const Level severity = level(known(rule), place.file);
    if (!severity) return;
    if (*severity == CheckFinding::ERROR) ++errors_;
    Tally& tally = tallies_[rule];
    if (tally.all == LIMIT) {
        if (tally.last.empty()) tally.last = place.file;
        ++tally.more[tally.last];
        return;
    }
    std::size_t& kept = tally.kept[place.file];
    if (kept == LIMIT_IN_FILE) {
        ++tally.more[place.file];
        return;
    }
    ++kept;
    ++tally.all;
    findings_.push_back({place.file, place.line, place.column, *severity, rule, std::move(text)});
}

void Report::tellMore() {
    for (const CheckRule& rule : PlatformCheck::rules()) {
        const auto tally = tallies_.find(rule.name);
        if (tally == tallies_.end()) continue;
        for (const auto& [file, more] : tally->second.more) {
            const char* const where = file == tally->second.last ? " here or in other files" : "";
            findings_.push_back({file, 0, 0, level(rule, file).value_or(rule.severity), rule.name,
                                 std::to_string(more) + " more like these" + where +
                                     (more == 1 ? " is" : " are") + " not shown",
                                 more});
        }
    }
    tallies_.clear();
}

HSTVector<CheckFinding> Report::take() {
    tellMore();
    std::map<std::string, std::size_t> order;
    for (const CheckFinding& finding : findings_) order.emplace(finding.file, order.size());
    std::stable_sort(findings_.begin(), findings_.end(),
                     [&](const CheckFinding& a, const CheckFinding& b) {
                         if (a.file != b.file) return order.at(a.file) < order.at(b.file);
                         if ((a.more > 0) != (b.more > 0)) return b.more > 0;
                         if (a.line != b.line) return a.line < b.line;
                         return a.column < b.column;
                     });
    fillMembers(findings_, archives_);
    return std::move(findings_);
}

std::optional<LocatedJson> LocatedJson::parse(std::string text, const std::string& file,
                                              Report& report) {
    if (!HI18N_isAscii(text)) text = HI18N_convertToUTF8(text);
    std::vector<std::size_t> lines{0};
    for (std::size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i + 1)) {
        lines.push_back(i + 1);
    }
    try {
        json::Document document(std::move(text));
        return LocatedJson(file, std::move(lines), std::move(document));
    } catch (const json::SyntaxError& error) {
        report.add("syntax", placeAt(file, lines, error.offset()), error.message());
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        report.add("syntax", {file, error.line(), 0}, error.message());
    }
    return std::nullopt;
}

Place LocatedJson::place(const json::Node& node) const {
    // What is empty and has no key stands where its bracket closes.
    const std::size_t offset = node.offset();
    return placeAt(file_, lines_, offset > 0 || node.hasChildren() ? offset : node.dataOffset());
}

Place LocatedJson::place(const json::Node& item, std::string_view key) const {
    const auto found = item.find(key);
    return place(found ? *found : item);
}

std::string shown(std::string_view text, std::size_t longest) {
    std::size_t length = std::min(text.size(), longest);
    // No character is cut in two.
    const auto isInside = [&](std::size_t i) {
        return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80;
    };
    for (int back = 0; back < 3 && length > 0 && isInside(length); ++back) --length;
    std::string result = "'";
    for (const char c : text.substr(0, length)) {
        result += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? '?' : c;
    }
    return result + (length < text.size() ? "...'" : "'");
}

std::string meant(std::string_view word) {
    return word.empty() ? "" : " (did you mean " + shown(word) + "?)";
}

std::string meant(std::string_view word, const std::vector<std::string>& candidates) {
    return meant(mav_host::nearest(word, candidates));
}

}  // namespace check
}  // namespace mav_platform
