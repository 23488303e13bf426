// SPDX-License-Identifier: Apache-2.0
#include "json/TreeText.h"

#include <algorithm>
#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <vector>

#include "json/Escape.h"

namespace mav_platform::json {

namespace {

using boost::property_tree::ptree;

constexpr std::size_t INDENT = 4;

struct Level {
    ptree::const_iterator next;
    ptree::const_iterator end;
    bool list;
    bool first = true;
};

/// Boost writes an array where every key is empty, except for the root.
bool isList(const ptree& node) {
    return std::all_of(node.begin(), node.end(),
                       [](const ptree::value_type& child) { return child.first.empty(); });
}

void putText(TextBuffer& text, std::string_view value) {
    char* out = text.room(escapeRoom(value) + 2);
    *out++ = '"';
    out = escape(out, value);
    *out++ = '"';
    text.commit(out);
}

void putLine(TextBuffer& text, std::size_t depth, bool comma) {
    char* out = text.room(INDENT * depth + 2);
    if (comma) *out++ = ',';
    *out++ = '\n';
    text.commit(putSpaces(out, INDENT * depth));
}

void putChar(TextBuffer& text, char c) {
    char* out = text.room(1);
    *out++ = c;
    text.commit(out);
}

Level openLevel(TextBuffer& text, const ptree& node, bool list) {
    putChar(text, list ? '[' : '{');
    return {node.begin(), node.end(), list};
}

/// Prints what is below the opened levels; `depth` is the first one's.
bool renderLevels(TextBuffer& text, std::vector<Level>& levels, std::size_t depth) {
    while (!levels.empty()) {
        Level& level = levels.back();
        const std::size_t here = depth + levels.size() - 1;
        if (level.next == level.end) {
            putLine(text, here, false);
            putChar(text, level.list ? ']' : '}');
            levels.pop_back();
            continue;
        }
        const auto& [key, child] = *level.next++;
        putLine(text, here + 1, !level.first);
        level.first = false;
        if (!level.list) {
            putText(text, key);
            char* out = text.room(2);
            *out++ = ':';
            *out++ = ' ';
            text.commit(out);
        }
        if (child.empty()) {
            putText(text, child.data());
        } else if (child.data().empty()) {
            levels.push_back(openLevel(text, child, isList(child)));
        } else {
            return false;
        }
    }
    return true;
}

bool renderFrom(TextBuffer& text, const ptree& node, bool list, std::size_t depth) {
    const std::size_t before = text.size();
    if (node.data().empty()) {
        std::vector<Level> levels{openLevel(text, node, list)};
        if (renderLevels(text, levels, depth)) return true;
    }
    text.truncate(before);
    return false;
}

}  // namespace

bool renderValue(TextBuffer& text, const ptree& node, std::size_t depth) {
    if (!node.empty()) return renderFrom(text, node, isList(node), depth);
    putText(text, node.data());
    return true;
}

void renderDocument(TextBuffer& text, const ptree& tree, const std::string& fileName) {
    if (!renderFrom(text, tree, false, 0)) {
        throw boost::property_tree::json_parser::json_parser_error(
            "ptree contains data that cannot be represented in JSON format", fileName, 0);
    }
    putChar(text, '\n');
}

void parseRendered(std::string_view body, bool list, ptree& tree) {
    struct Open {
        ptree* node;
        bool list;
    };
    std::vector<Open> open{{&tree, list}};
    const char* cur = body.data();
    const char* const end = cur + body.size();
    std::string key;
    for (;;) {
        while (cur != end && (*cur == ' ' || *cur == '\n' || *cur == ',')) ++cur;
        if (cur == end) return;
        if (*cur == '}' || *cur == ']') {
            open.pop_back();
            ++cur;
            continue;
        }
        const Open here = open.back();
        key.clear();
        if (!here.list) cur = unescape(cur + 1, key) + 2;
        ptree& child = here.node->push_back({key, ptree()})->second;
        if (*cur == '"') {
            cur = unescape(cur + 1, child.data());
        } else {
            open.push_back({&child, *cur == '['});
            ++cur;
        }
    }
}

}  // namespace mav_platform::json
