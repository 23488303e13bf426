// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformDifference.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "json/Document.h"
#include "mav_host/Printable.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONValue.h"
#include "services/LoadedDocument.h"

namespace mav_platform {

namespace fs = std::filesystem;
using json::Node;

namespace {

using Change = PlatformDifference::Change;
using Changes = PlatformDifference::Changes;

/// Where the platform lies is not what it is.
constexpr std::array<std::string_view, 4> PLACES{"uniqueName", "file", "directory", "platformFile"};
/// Files of the platform, told by where they lie from its directory.
constexpr std::array<std::string_view, 3> MEMBERS{"hwFile", "hwEmuFile", "swFile"};
/// What tells the items of a list apart, the first that an item has.
constexpr std::array<std::string_view, 6> IDENTITIES{"name",     "id",       "dpeInst",
                                                     "instance", "designID", "type"};
/// Up to so many members are held against each other for equal keys.
constexpr std::size_t FEW_MEMBERS = 32;

using Told = std::map<std::string, std::string, std::less<>>;

/// The platform's own files told from the platform's directory, however the path to it was written.
/// A file elsewhere keeps its path.
Told toldFromDirectory(const Node& document) {
    Told told;
    const fs::path directory = fs::weakly_canonical(document.text("directory"));
    for (const std::string_view key : MEMBERS) {
        const std::string file = document.text(key);
        if (file.empty()) continue;
        const fs::path member = fs::weakly_canonical(file);
        const fs::path relative = member.lexically_relative(directory);
        const bool inside = !relative.empty() && *relative.begin() != "..";
        told.emplace(key, inside ? relative.string() : member.string());
    }
    return told;
}

/// A foreign name where it is told over and over: no more of it than what tells it apart.
std::string brief(std::string_view name) {
    constexpr std::size_t MOST = 80;
    const std::string_view told = mav_host::beginning(name, MOST);
    return std::string(told) + (told.size() < name.size() ? ".." : "");
}

/// A value in few words: a text as it stands, an object by its first texts.
std::string inFewWords(const Node& node) {
    if (!node.hasChildren()) return std::string(node.data());
    std::string text;
    std::size_t taken = 0;
    for (const Node& child : node) {
        if (child.hasChildren() || child.data().empty()) continue;
        if (taken++ == 4) return text + ", ..";
        if (!text.empty()) text += ", ";
        if (!child.key().empty()) text.append(child.key()).append(" ");
        text += child.data();
    }
    return text;
}

std::string_view identity(const Node& item) {
    for (const std::string_view key : IDENTITIES) {
        const auto found = item.find(key);
        if (found && !found->data().empty()) return found->data();
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
bool meanTheSame(std::string_view key, std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (key == "name" || key == "id" || key.ends_with("ersion")) return false;
    const std::string value = number(a);
    return !value.empty() && value == number(b);
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

using Members = std::vector<std::pair<Step, Node>>;

/// What is directly below a node.
Members membersOf(const Node& node) {
    Members list;
    std::unordered_map<std::string_view, unsigned> seen;
    for (const Node& child : node) {
        if (isOneOf(PLACES, child.key())) continue;
        const bool isItem = child.key().empty();
        const std::string_view name = isItem ? identity(child) : child.key();
        list.push_back({{name, isItem, isItem ? ++seen[name] : 1}, child});
    }
    return list;
}

/// True when both hold the same steps in the same order, and none of them twice.
bool goTogether(const Members& a, const Members& b) {
    const auto same = [](const auto& one, const auto& other) { return one.first == other.first; };
    if (!std::equal(a.begin(), a.end(), b.begin(), b.end(), same)) return false;
    const bool items =
        std::all_of(a.begin(), a.end(), [](const auto& m) { return m.first.isItem; });
    if (items) return true;  // their counts tell them apart
    if (a.size() > FEW_MEMBERS) return false;
    for (auto member = a.begin(); member != a.end(); ++member) {
        for (auto before = a.begin(); before != member; ++before) {
            if (same(*member, *before)) return false;
        }
    }
    return true;
}

class Comparison {
  public:
    Comparison(const Told& before, const Told& after) : toldBefore_(before), toldAfter_(after) {}

    void compare(const Node& a, const Node& b) {
        if (!a.hasChildren() && !b.hasChildren()) {
            compareTexts(shown(a, toldBefore_), shown(b, toldAfter_));
            return;
        }
        const Members before = membersOf(a);
        const Members after = membersOf(b);
        if (!goTogether(before, after)) {
            match(before, after);
            return;
        }
        for (std::size_t i = 0; i < before.size(); ++i) {
            steps_.push_back(before[i].first);
            compare(before[i].second, after[i].second);
            steps_.pop_back();
        }
    }
    Changes take() { return std::move(changes_); }

  private:
    void compareTexts(std::string_view a, std::string_view b) {
        const std::string_view key = steps_.empty() ? std::string_view() : steps_.back().name;
        if (!meanTheSame(key, a, b))
            changes_.push_back({Change::CHANGED, path(), std::string(a), std::string(b)});
    }

    void match(const Members& before, const Members& after) {
        const std::map<Step, Node> inBefore(before.begin(), before.end());
        const std::map<Step, Node> inAfter(after.begin(), after.end());
        for (const auto& [step, node] : before) {
            const auto other = inAfter.find(step);
            steps_.push_back(step);
            if (other == inAfter.end()) {
                changes_.push_back({Change::REMOVED, path(), inFewWords(node, toldBefore_), {}});
            } else {
                compare(node, other->second);
            }
            steps_.pop_back();
        }
        for (const auto& [step, node] : after) {
            if (inBefore.contains(step)) continue;
            steps_.push_back(step);
            changes_.push_back({Change::ADDED, path(), {}, inFewWords(node, toldAfter_)});
            steps_.pop_back();
        }
    }

    /// The text of the node where the steps lead.
    std::string_view shown(const Node& node, const Told& told) const {
        if (steps_.size() != 1) return node.data();
        const auto found = told.find(steps_.back().name);
        return found == told.end() ? node.data() : std::string_view(found->second);
    }
    std::string inFewWords(const Node& node, const Told& told) const {
        return node.hasChildren() ? mav_platform::inFewWords(node) : std::string(shown(node, told));
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

    const Told& toldBefore_;
    const Told& toldAfter_;
    std::vector<Step> steps_;
    Changes changes_;
};

}  // namespace

PlatformDifference::Changes PlatformDifference::between(const HMAVPlatform& first,
                                                        const HMAVPlatform& second) {
    const json::Document before = mav::platform::documentOf(first);
    const json::Document after = mav::platform::documentOf(second);
    const Told toldBefore = toldFromDirectory(before.root());
    const Told toldAfter = toldFromDirectory(after.root());
    Comparison comparison(toldBefore, toldAfter);
    comparison.compare(before.root(), after.root());
    return comparison.take();
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
