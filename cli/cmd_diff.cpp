// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <map>
#include <string_view>
#include <unordered_map>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "Screen.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using boost::property_tree::ptree;

/// Where the platform lies is not what it is.
constexpr std::array<std::string_view, 4> PLACES{"uniqueName", "file", "directory", "platformFile"};
/// Files of the platform, told by where they lie from its directory.
constexpr std::array<std::string_view, 3> MEMBERS{"hwFile", "hwEmuFile", "swFile"};
/// What tells the items of a list apart, the first that an item has.
constexpr std::array<const char*, 6> IDENTITIES{"name",     "id",       "dpeInst",
                                                "instance", "designID", "type"};

struct Change {
    enum Kind { CHANGED, ADDED, REMOVED };
    Kind kind;
    std::string path;
    std::string from;
    std::string to;
};

/// A value in few words: a text as it stands, an object by its first texts.
std::string brief(const ptree& node) {
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

std::string identity(const ptree& item) {
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

class Comparison {
  public:
    void compare(const ptree& a, const ptree& b, const std::string& path) {
        if (a.empty() && b.empty()) {
            if (!meanTheSame(std::string_view(path).substr(path.rfind('.') + 1), a.data(),
                             b.data()))
                changes_.push_back({Change::CHANGED, path, a.data(), b.data()});
            return;
        }
        const auto before = members(a, path);
        const auto after = members(b, path);
        std::unordered_map<std::string_view, const ptree*> inAfter;
        for (const auto& [name, node] : after) inAfter.emplace(name, node);
        std::unordered_map<std::string_view, const ptree*> inBefore;
        for (const auto& [name, node] : before) {
            inBefore.emplace(name, node);
            const auto other = inAfter.find(name);
            if (other == inAfter.end()) {
                changes_.push_back({Change::REMOVED, name, brief(*node), {}});
            } else {
                compare(*node, *other->second, name);
            }
        }
        for (const auto& [name, node] : after) {
            if (inBefore.count(name) == 0) {
                changes_.push_back({Change::ADDED, name, {}, brief(*node)});
            }
        }
    }
    const std::vector<Change>& changes() const { return changes_; }

  private:
    using Members = std::vector<std::pair<std::string, const ptree*>>;

    /// The paths of what is directly below a node. Equal items of a list are numbered.
    static Members members(const ptree& node, const std::string& path) {
        Members list;
        std::map<std::string, unsigned> seen;
        for (const auto& [key, child] : node) {
            if (isOneOf(PLACES, key)) continue;
            std::string name = path;
            if (key.empty()) {
                const std::string item = identity(child);
                const unsigned count = ++seen[item];
                name.append("[").append(item);
                if (count > 1) name.append("#").append(std::to_string(count));
                name += ']';
            } else {
                if (!path.empty()) name += '.';
                name += key;
            }
            list.emplace_back(std::move(name), &child);
        }
        return list;
    }

    std::vector<Change> changes_;
};

ptree document(const std::string& file) {
    const auto platform = cli::loadFile("diff", file)->load();
    ptree made = HMAVJSONUtils::readJson(platform->toJSONString());
    tellFromDirectory(made);
    return made;
}

std::string json(const std::vector<Change>& changes) {
    static constexpr const char* KINDS[] = {"changed", "added", "removed"};
    mav_platform::JSONObjectWriter writer;
    writer.addKey("differ", !changes.empty());
    writer.addList("changes", [&](mav_platform::JSONListWriter& list) {
        for (const Change& change : changes) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("kind", KINDS[change.kind]);
                item.addKey("path", change.path);
                if (change.kind != Change::ADDED) item.addKey("from", change.from);
                if (change.kind != Change::REMOVED) item.addKey("to", change.to);
            });
        }
    });
    return cli::withEmptyLists(writer.text(), {{"changes", changes.empty()}});
}

std::string plain(const std::vector<Change>& changes, bool color) {
    static constexpr const char* SIGNS[] = {"~ ", "+ ", "- "};
    static constexpr const char* COLORS[] = {"\033[33m", "\033[32m", "\033[31m"};
    // The hardware stands deep in the document; the words around it tell a reader nothing.
    static const std::string HEAD = "hardwarePlatforms.";
    std::string text;
    for (const Change& change : changes) {
        std::string line = SIGNS[change.kind];
        line += cli::printable(change.path.rfind(HEAD, 0) == 0 ? change.path.substr(HEAD.size())
                                                               : change.path);
        const std::string from = cli::printable(change.from);
        const std::string to = cli::printable(change.to);
        if (change.kind == Change::CHANGED) line += ": '" + from + "' -> '" + to + "'";
        if (change.kind == Change::ADDED && !to.empty()) line += ": " + to;
        if (change.kind == Change::REMOVED && !from.empty()) line += ": " + from;
        text += color ? COLORS[change.kind] + line + "\033[0m\n" : line + "\n";
    }
    return text;
}

}  // namespace

bool cli::runDiff(const DiffOptions& options) {
    const bool color = wantsColor(options.color, "diff");
    const ptree before = document(options.first);
    const ptree after = document(options.second);
    Comparison comparison;
    comparison.compare(before, after, "");
    const auto& changes = comparison.changes();
    writeAnswer(options.json ? json(changes) : plain(changes, color));
    return changes.empty();
}
