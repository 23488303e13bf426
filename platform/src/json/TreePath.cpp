// SPDX-License-Identifier: Apache-2.0
#include "json/TreePath.h"

#include <boost/property_tree/ptree.hpp>
#include <string>

namespace mav_platform::json {

namespace {

using boost::property_tree::ptree;

constexpr char SEPARATOR = '.';

template <class Tree>
Tree* walk(Tree* node, std::string_view path) {
    std::string part;
    while (!path.empty()) {
        const std::size_t length = path.find(SEPARATOR);
        part.assign(path.substr(0, length));
        path.remove_prefix(length == std::string_view::npos ? path.size() : length + 1);
        const auto found = node->find(part);
        if (found == node->not_found()) return nullptr;
        node = &found->second;
    }
    return node;
}

}  // namespace

ptree* findPath(ptree& tree, std::string_view path) {
    return walk(&tree, path);
}
const ptree* findPath(const ptree& tree, std::string_view path) {
    return walk(&tree, path);
}

ptree& addPath(ptree& tree, std::string_view path) {
    ptree* node = &tree;
    for (std::size_t length; (length = path.find(SEPARATOR)) != std::string_view::npos;) {
        const std::string part(path.substr(0, length));
        path.remove_prefix(length + 1);
        const auto found = node->find(part);
        node =
            found == node->not_found() ? &node->push_back({part, ptree()})->second : &found->second;
    }
    return node->push_back({std::string(path), ptree()})->second;
}

}  // namespace mav_platform::json
