// SPDX-License-Identifier: Apache-2.0
#include "repository/IgnoreRules.h"

#include <fnmatch.h>

#include <algorithm>
#include <span>

namespace mav_platform {
namespace {

using Pieces = std::vector<std::string>;

Pieces split(std::string_view path) {
    Pieces pieces;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        if (end > start) pieces.emplace_back(path.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

bool matches(const std::string& pattern, const std::string& name) {
    return ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

/// Which beginnings of the path the pattern so far matches; one pass for each piece.
bool matches(const Pieces& pattern, std::span<const std::string> path) {
    std::vector<bool> reached(path.size() + 1);
    reached[0] = true;
    for (const std::string& piece : pattern) {
        std::vector<bool> next(path.size() + 1);
        const bool any = piece == "**";
        const bool isLast = &piece == &pattern.back();
        for (std::size_t i = 0; i <= path.size(); ++i) {
            if (any) {
                // At the end it stands for what is inside, not for the folder itself.
                if (reached[i] && !isLast) next[i] = true;
                if (i > 0 && (next[i - 1] || reached[i - 1])) next[i] = true;
            } else if (i > 0 && reached[i - 1]) {
                next[i] = matches(piece, path[i - 1]);
            }
        }
        reached = std::move(next);
    }
    return reached[path.size()];
}

/// Without the blanks at the end that no backslash keeps.
std::string_view trimmed(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    while (line.ends_with(' ') && !line.ends_with("\\ ")) line.remove_suffix(1);
    return line;
}

IgnoreRules::Rule ruleOf(std::string_view pattern) {
    IgnoreRules::Rule rule;
    rule.told.append("'").append(pattern).append("'");
    if (pattern.starts_with('!')) {
        rule.takesIn = true;
        pattern.remove_prefix(1);
    }
    if (pattern.ends_with('/')) {
        rule.foldersOnly = true;
        pattern.remove_suffix(1);
    }
    rule.isAnchored = pattern.find('/') != std::string_view::npos;
    rule.pieces = split(pattern);
    return rule;
}

bool matches(const IgnoreRules::Rule& rule, std::span<const std::string> path, bool isDir) {
    if (rule.foldersOnly && !isDir) return false;
    return rule.isAnchored ? matches(rule.pieces, path) : matches(rule.pieces.front(), path.back());
}

}  // namespace

void IgnoreRules::add(std::string_view text, const std::string& origin, bool numbered) {
    std::size_t number = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        ++number;
        const std::string_view pattern = trimmed(line);
        if (pattern.starts_with('#')) continue;
        Rule rule = ruleOf(pattern);
        if (rule.pieces.empty()) continue;
        rule.told +=
            numbered ? " in line " + std::to_string(number) + " of " + origin : " of " + origin;
        rules_.push_back(std::move(rule));
    }
}

const IgnoreRules::Rule* IgnoreRules::ignoring(std::string_view path, bool isDir) const {
    const Pieces pieces = split(path);
    for (std::size_t depth = 1; depth <= pieces.size(); ++depth) {
        const std::span<const std::string> part(pieces.data(), depth);
        const bool folder = depth < pieces.size() || isDir;
        const auto rule = std::find_if(rules_.rbegin(), rules_.rend(),
                                       [&](const Rule& one) { return matches(one, part, folder); });
        if (rule != rules_.rend() && !rule->takesIn) return &*rule;
    }
    return nullptr;
}

}  // namespace mav_platform
