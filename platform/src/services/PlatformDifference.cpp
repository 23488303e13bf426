// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformDifference.h"

#include <algorithm>
#include <array>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "mav_host/Printable.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONValue.h"

namespace mav_platform {
namespace {

using boost::property_tree::ptree;
using Change = PlatformDifference::Change;
using Changes = PlatformDifference::Changes;

/// Where the platform lies is not what it is.
constexpr std::array<std::string_view, 4> PLACES{"uniqueName", "file", "directory", "platformFile"};
/// Files of the platform, told by where they lie from its directory.
constexpr std::array<std::string_view, 3> MEMBERS{"hwFile", "hwEmuFile", "swFile"};
/// What tells the items of a list apart, the first that an item has.
constexpr std::array<const char*, 6> IDENTITIES{"name",     "id",       "dpeInst",
                                                "instance", "designID", "type"};

/// A foreign name where it is told over and over: no more of it than what tells it apart.
std::string brief(std::string_view name) {
    constexpr std::size_t MOST = 80;
    const std::string_view told = mav_host::beginning(name, MOST);
    return std::string(told) + (told.size() < name.size() ? ".." : "");
}

/// A value in few words: a text as it stands, an object by its first texts.
std::string inFewWords(const ptree& node) {
    if (node.empty()) return node.data();
    std::string text;
    std::size_t taken = 0;
    for (const auto& [key, child] : node) {
        if (!child.empty() || child.data().empty()) continue;
        if (taken++ == 4) return text + ", ..";
        if (!text.empty()) text += ", ";
        if (!key.empty()) text.append(key).append(" ");
        text += child.data();
    }
    return text;
}

std::string_view identity(const ptree& item) {
    for (const char* const key : IDENTITIES) {
        const auto found = item.find(key);
        if (found != item.not_found() && !found->second.data().empty()) return found->second.data();
    }
    return item.data();
}

template <class List>
bool isOneOf(const List& list, std::string_view key) {
    return std::find(list.begin(), list.end(), key) != list.end();
}

/// A decimal number without the zeros that say nothing; empty for any other text.
std::string number(std::string_view text) {
    const std::string sign = text.starts_with('-') ? "-" : "";
    text.remove_prefix(sign.size());
    const std::string_view whole = text.substr(0, text.find('.'));
    std::string_view part = text.substr(std::min(text.size(), whole.size() + 1));
    const auto digits = [](std::string_view piece) {
        return !piece.empty() && piece.find_first_not_of("0123456789") == std::string_view::npos;
    };
    if (!digits(whole) || (whole.size() < text.size() && !digits(part))) return {};
    part = part.substr(0, part.find_last_not_of('0') + 1);
    const std::size_t first = std::min(whole.find_first_not_of('0'), whole.size() - 1);
    std::string shown(whole.substr(first));
    if (!part.empty()) shown.append(".").append(part);
    return shown == "0" ? shown : sign + shown;
}

/// Whether two texts under the key mean the same. 1.1 and 1.10 are one frequency, but two versions.
bool meanTheSame(std::string_view key, const std::string& a, const std::string& b) {
    if (a == b) return true;
    if (key == "name" || key == "id" || key.ends_with("ersion")) return false;
    const std::string value = number(a);
    return !value.empty() && value == number(b);
}

/// The document with the platform's own files told from the platform's directory, however the path
/// to it was written. A file elsewhere keeps its path.
void tellFromDirectory(ptree& document) {
    namespace fs = std::filesystem;
    const fs::path directory = fs::weakly_canonical(document.get<std::string>("directory", ""));
    for (const std::string_view key : MEMBERS) {
        const auto found = document.find(std::string(key));
        if (found == document.not_found() || found->second.data().empty()) continue;
        const fs::path member = fs::weakly_canonical(found->second.data());
        const fs::path relative = member.lexically_relative(directory);
        const bool inside = !relative.empty() && *relative.begin() != "..";
        found->second.data() = inside ? relative.string() : member.string();
    }
}

/// A member's name or an item's identity, which the document holds, with the number that tells
/// equal ones apart.
struct Step {
    std::string_view name;
    bool isItem;
    unsigned count;

    bool operator==(const Step&) const = default;
    bool operator<(const Step& other) const {
        return std::tie(name, isItem, count) < std::tie(other.name, other.isItem, other.count);
    }
};

class Comparison {
  public:
    void compare(const ptree& a, const ptree& b) {
        if (a.empty() && b.empty()) {
            const std::string_view key = steps_.empty() ? std::string_view() : steps_.back().name;
            if (!meanTheSame(key, a.data(), b.data()))
                changes_.push_back({Change::CHANGED, path(), a.data(), b.data()});
            return;
        }
        const Members before = members(a);
        const Members after = members(b);
        const std::map<Step, const ptree*> inBefore(before.begin(), before.end());
        const std::map<Step, const ptree*> inAfter(after.begin(), after.end());
        for (const auto& [step, node] : before) {
            const auto other = inAfter.find(step);
            steps_.push_back(step);
            if (other == inAfter.end()) {
                changes_.push_back({Change::REMOVED, path(), inFewWords(*node), {}});
            } else {
                compare(*node, *other->second);
            }
            steps_.pop_back();
        }
        for (const auto& [step, node] : after) {
            if (inBefore.contains(step)) continue;
            steps_.push_back(step);
            changes_.push_back({Change::ADDED, path(), {}, inFewWords(*node)});
            steps_.pop_back();
        }
    }
    const Changes& changes() const { return changes_; }

  private:
    using Members = std::vector<std::pair<Step, const ptree*>>;

    /// What is directly below a node.
    static Members members(const ptree& node) {
        Members list;
        std::map<std::string_view, unsigned> seen;
        for (const auto& [key, child] : node) {
            if (isOneOf(PLACES, key)) continue;
            const bool isItem = key.empty();
            const std::string_view name = isItem ? identity(child) : key;
            list.push_back({{name, isItem, isItem ? ++seen[name] : 1}, &child});
        }
        return list;
    }

    /// Made for a change alone, of brief names: a document may repeat a long one without end.
    std::string path() const {
        std::string made;
        for (const Step& step : steps_) {
            if (!step.isItem && !made.empty()) made += '.';
            if (step.isItem) made += '[';
            made += brief(step.name);
            if (step.count > 1) made.append("#").append(std::to_string(step.count));
            if (step.isItem) made += ']';
        }
        return made;
    }

    std::vector<Step> steps_;
    Changes changes_;
};

ptree documentOf(const HMAVPlatform& platform) {
    ptree made = HMAVJSONUtils::readJson(platform.toJSONString());
    tellFromDirectory(made);
    return made;
}

}  // namespace

PlatformDifference::Changes PlatformDifference::between(const HMAVPlatform& first,
                                                        const HMAVPlatform& second) {
    const ptree before = documentOf(first);
    const ptree after = documentOf(second);
    Comparison comparison;
    comparison.compare(before, after);
    return comparison.changes();
}

std::string PlatformDifference::json(const Changes& changes) {
    static constexpr const char* KINDS[] = {"changed", "added", "removed"};
    JSONValue list = JSONValue::list();
    for (const Change& change : changes) {
        list.add(JSONValue::object()
                     .add("kind", KINDS[change.kind])
                     .add("path", change.path)
                     .add("from", JSONValue::orNull(change.from))
                     .add("to", JSONValue::orNull(change.to)));
    }
    return JSONValue::answer("diff")
        .add("differ", !changes.empty())
        .add("changes", std::move(list))
        .text();
}

}  // namespace mav_platform
