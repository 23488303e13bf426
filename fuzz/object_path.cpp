// SPDX-License-Identifier: Apache-2.0
// An object path: the same answer from a property tree and from a compact document.
#include "services/ObjectPath.h"
#include "support.h"

namespace paths = mav::platform::paths;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const mav_platform::json::Document document(
        R"({"hardwarePlatforms": {"hardwarePlatform": {"systemClocks": [{"name": "a", "id": "0"},
            {"name": "b", "id": "1"}], "files": [[], [["x"], "y"], {"": "w", "k": "z"}], "n": "1"}},
            "hardwarePlatform": {"n": "2"}, "[0]": "k", "": ["p", {"n": ["q"]}]})");
    static const boost::property_tree::ptree tree = document.tree();
    const std::string text = fuzz::text(data, size);
    const std::string path = paths::withActualRoot(tree, text);
    fuzz::require(path == paths::withActualRoot(document.root(), text), "the roots differ");

    const auto* const place = paths::find(tree, path);
    const auto node = paths::find(document.root(), path);
    fuzz::require((place != nullptr) == node.has_value(), "one form has it and the other not");
    if (node) fuzz::require(node->tree() == *place, "the nodes differ");

    const auto places = paths::findAll(tree, path);
    const auto nodes = paths::findAll(document.root(), path);
    fuzz::require(places.size() == nodes.size(), "the numbers of objects differ");
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        fuzz::require(nodes[i].place->tree() == *places[i].place, "the objects differ");
        fuzz::require(nodes[i].indices == places[i].indices, "their places differ");
    }
    bool found = false;
    const auto objects = paths::objectsAt(document.root(), text, found);
    fuzz::require(found || objects.empty(), "objects that were not found");
    return 0;
}
