// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeDictService.h"

#include "mav_platform/HMAVNativeObjectService.h"
#include "services/Children.h"
#include "services/LoadedDocument.h"
#include "services/ObjectPath.h"

namespace mav::platform {

DictService::~DictService() = default;
NativeDictService::~NativeDictService() = default;

namespace {

using boost::property_tree::ptree;
using Dict = DictService::Dict;

bool isValue(const ptree& node) {
    return node.empty();
}
bool isValue(const paths::Node& node) {
    return !node.hasChildren();
}

std::string valueOf(const ptree& node) {
    return node.data();
}
std::string valueOf(const paths::Node& node) {
    return std::string(node.data());
}

/// Appends the values below the node; `name` is the path so far and comes back as it was.
template <class Tree>
void flatten(const Tree& node, std::string& name, NameBudget& budget, Dict& out) {
    if (isValue(node)) {
        budget.take(name.size());
        out.emplace_back(name, valueOf(node));
        return;
    }
    std::size_t index = 0;
    const bool list = paths::isList(node);
    forEachChild(node, [&](std::string_view key, const Tree& child) {
        const std::size_t size = name.size();
        if (list) {
            name.append("[").append(std::to_string(index++)).append("]");
        } else {
            if (size != 0) name += '.';
            name += key;
        }
        flatten(child, name, budget, out);
        name.resize(size);
    });
}

template <class Place>
Dict dictOf(const Place& place) {
    Dict dict;
    std::string name;
    NameBudget budget;
    if (place) flatten(*place, name, budget, dict);
    return dict;
}

Dict dictAt(const paths::Node& root, const std::string& path, bool& found) {
    const auto node = paths::find(root, paths::withActualRoot(root, path));
    found = node.has_value();
    return dictOf(node);
}

Dict filteredAt(const paths::Node& root, const std::string& path,
                const std::set<std::string>& keys) {
    const std::string actual = paths::withActualRoot(root, path);
    Dict kept;
    for (const auto& [node, indices] : paths::findAll(root, actual)) {
        for (auto& [name, value] : dictOf(node)) {
            if (!keys.contains(name)) continue;
            const bool member = !indices.empty() && !name.empty() && name.front() != '[';
            kept.emplace_back(indices + (member ? "." : "") + name, std::move(value));
        }
    }
    return kept;
}

}  // namespace

Dict NativeDictService::getAsDict(const std::string& platformFile, const std::string& path,
                                  bool& found) const {
    found = false;
    return dictAt(documentOf(platformFile).root(), path, found);
}

Dict NativeDictService::getAsDict(PlatformLoader* loader, const std::string& path,
                                  bool& found) const {
    found = false;
    return dictAt(documentOf(loader).root(), path, found);
}

Dict NativeDictService::getAsDict(const ptree& tree, const std::string& path) const {
    return dictOf(paths::find(tree, paths::withActualRoot(tree, path)));
}

Dict NativeDictService::getFilteredDict(const std::string& platformFile, const std::string& path,
                                        const std::set<std::string>& keys) const {
    return filteredAt(documentOf(platformFile).root(), path, keys);
}

Dict NativeDictService::getFilteredDict(PlatformLoader* loader, const std::string& path,
                                        const std::set<std::string>& keys) const {
    return filteredAt(documentOf(loader).root(), path, keys);
}

std::string NativeDictService::getAsJsonStr(const Dict& dict) {
    if (dict.empty()) return "{\n}\n";
    // A member with the empty name would make the object look like a list.
    if (dict.size() == 1 && dict.front().first.empty())
        return "{\n    \"\": " + NativeObjectService::getNodeAsJsonStr(ptree(dict.front().second)) +
               "}\n";
    ptree tree;
    for (const auto& [name, value] : dict) tree.push_back({name, ptree(value)});
    return NativeObjectService::getNodeAsJsonStr(tree);
}

}  // namespace mav::platform
