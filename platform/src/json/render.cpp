// SPDX-License-Identifier: Apache-2.0
#include "json/render.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <vector>

namespace mav_platform::json {
namespace {

using boost::property_tree::ptree;

constexpr std::size_t INDENT = 4;

/// One container that is being printed. No recursion: trees of any depth are printed.
struct Level {
    const ptree* tree;
    ptree::const_iterator next;
    bool isArray;
};

bool isArray(const ptree& tree) {
    return tree.count("") == tree.size();
}

}  // namespace

bool isRepresentable(const ptree& tree) {
    std::vector<const ptree*> open{&tree};
    while (!open.empty()) {
        const ptree& node = *open.back();
        open.pop_back();
        if (node.empty()) continue;
        if (!node.data().empty()) return false;
        for (const auto& child : node) open.push_back(&child.second);
    }
    return true;
}

void render(const ptree& tree, std::size_t depth, detail::TextBuffer& out) {
    std::vector<Level> open;
    const auto begin = [&](const ptree& node) {
        const std::size_t at = depth + open.size();
        if (at > 0 && node.empty()) {
            out.appendQuoted(node.data());
            return;
        }
        open.push_back({&node, node.begin(), at > 0 && isArray(node)});
        out.append(open.back().isArray ? "[\n" : "{\n");
    };
    begin(tree);
    while (!open.empty()) {
        Level& level = open.back();
        const std::size_t at = depth + open.size();
        if (level.next == level.tree->end()) {
            if (!level.tree->empty()) out.append('\n');
            out.appendBlanks(INDENT * (at - 1));
            out.append(level.isArray ? ']' : '}');
            open.pop_back();
            continue;
        }
        if (level.next != level.tree->begin()) out.append(",\n");
        out.appendBlanks(INDENT * at);
        if (!level.isArray) {
            out.appendQuoted(level.next->first);
            out.append(": ");
        }
        const ptree& child = (level.next++)->second;
        begin(child);
    }
}

void renderDocument(const ptree& tree, detail::TextBuffer& out) {
    if (!tree.data().empty() || !isRepresentable(tree)) {
        throw boost::property_tree::json_parser::json_parser_error(
            "ptree contains data that cannot be represented in JSON format", "", 0);
    }
    render(tree, 0, out);
    out.append('\n');
}

}  // namespace mav_platform::json
