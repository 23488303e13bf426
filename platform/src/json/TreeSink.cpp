// SPDX-License-Identifier: Apache-2.0
#include "json/TreeSink.h"

#include "json/KeyPlaces.h"
#include "json/TreePath.h"
#include "json/TreeText.h"

namespace mav_platform::json {
namespace {

using boost::property_tree::ptree;

/// Texts that were put into a tree from outside.
void convertAll(ptree& tree) {
    const auto convert = [](std::string& text) {
        if (!isUtf8(text)) text = HI18N_convertToUTF8(text);
    };
    convert(tree.data());
    for (auto& [key, child] : tree) {
        if (!isUtf8(key)) {  // keys cannot be changed in place
            ptree renamed;
            for (auto& [old, node] : tree) {
                renamed.push_back({HI18N_convertToUTF8(old), ptree()})->second.swap(node);
            }
            renamed.data().swap(tree.data());
            tree.swap(renamed);
            break;
        }
    }
    for (auto& [key, child] : tree) convertAll(child);
}

}  // namespace

void TreeSink::put(std::string_view path, std::string_view value) {
    ptree* node = list_ ? nullptr : findPath(tree_, path);
    if (node == nullptr) node = &addNodeAtPath(path);
    node->data().assign(value);
}

void TreeSink::add(std::string_view key, std::string_view value) {
    addNode(key).data().assign(value);
}

void TreeSink::addAtPath(std::string_view path, ptree& sub) {
    convertAll(sub);
    addNodeAtPath(path).swap(sub);
}

void TreeSink::addChild(std::string_view key, ptree& sub) {
    convertAll(sub);
    addNode(key).swap(sub);
}

std::string_view TreeSink::text() {
    rendered_.truncate(0);
    renderDocument(rendered_, tree_);
    if (!isUtf8(rendered_.view())) {  // as only who has the tree itself can put it there
        ptree copy(tree_);
        convertAll(copy);
        rendered_.truncate(0);
        renderDocument(rendered_, copy);
    }
    return rendered_.view();
}

void TreeSink::drainTo(char* out) noexcept {
    rendered_.drainTo(out);
    tree_.clear();
}

ptree& TreeSink::addNode(std::string_view key) {
    return tree_.push_back({HI18N_convertToUTF8(key), ptree()})->second;
}

ptree& TreeSink::addNodeAtPath(std::string_view path) {
    return list_ ? addNode({}) : addPath(tree_, HI18N_convertToUTF8(path));
}

}  // namespace mav_platform::json
