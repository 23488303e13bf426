// SPDX-License-Identifier: Apache-2.0
#include "json/Document.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>

#include "json/Parser.h"
#include "mav_host/HI18N.h"

namespace mav_platform::json {

namespace {

using boost::property_tree::ptree;

// Nesting is bounded by the parser, so the recursion is too.
void fill(ptree& tree, const Node& node) {
    tree.data().assign(node.data());
    for (const Node& child : node) {
        const auto added = tree.push_back({std::string(child.key()), ptree()});
        fill(added->second, child);
    }
}

}  // namespace

Document Document::fromBytes(std::string bytes, std::string_view fileName, unsigned maxDepth) {
    if (!HI18N_isUTF8(bytes)) bytes = HI18N_convertToUTF8(bytes);
    return Document(std::move(bytes), fileName, maxDepth);
}

void Document::parse(char* text, std::size_t size, std::string_view fileName, unsigned maxDepth) {
    if (size > MAX_SIZE) {
        throw boost::property_tree::json_parser::json_parser_error("text larger than 1 GiB",
                                                                   std::string(fileName), 0);
    }
    text_ = text;
    Parser(text, size, fileName, cells_, maxDepth).run();
}

ptree Document::tree() const {
    return root().tree();
}

std::optional<Node> Node::find(std::string_view key) const {
    for (const Node& child : *this) {
        if (child.key() == key) return child;
    }
    return std::nullopt;
}

std::string Node::text(std::string_view key) const {
    const std::optional<Node> child = find(key);
    return child ? std::string(child->data()) : std::string();
}

ptree Node::tree() const {
    ptree tree;
    fill(tree, *this);
    return tree;
}

}  // namespace mav_platform::json
