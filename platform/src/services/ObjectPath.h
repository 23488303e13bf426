// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/Document.h"
#include "mav_platform/HMAVNativeObjectService.h"

/// Object paths over the two forms of a document: property tree and compact document.
namespace mav::platform::paths {

using boost::property_tree::ptree;
using mav_platform::json::Node;
using Fragments = HSTVector<NativeObjectService::PathFragment>;

inline constexpr const char* DEFAULT_ROOT = "hardwarePlatforms.hardwarePlatform";
inline constexpr const char* PARTITION_ROOT =
    "hardwarePlatforms.reconfigurablePartitions[0].hardwarePlatform";
inline constexpr const char* PARTITION_ROOT_ALT =
    "hardwarePlatforms.reconfigurablePartitions..hardwarePlatform";
inline constexpr const char* LEGACY_ROOT = "hardwarePlatform";

/// A node where it lies, or nothing.
using TreePlace = const ptree*;
using NodePlace = std::optional<Node>;

inline TreePlace placeOf(const ptree& node) {
    return &node;
}
inline NodePlace placeOf(const Node& node) {
    return node;
}

/// The node at a path; nothing when it leads nowhere.
TreePlace find(const ptree& root, const std::string& path);
NodePlace find(const Node& root, const std::string& path);

/// A node that stands for one of several, and its places in the lists on the way, such as "[2][0]".
template <class Place>
struct At {
    Place place;
    std::string indices;
};

/// The node is a list with elements.
bool isList(const ptree& node);
bool isList(const Node& node);

/// Everything at the path, in document order, when "[]", "[*]" and ".." stand for every element; on
/// a node that is no list, for the node itself.
std::vector<At<TreePlace>> findAll(const ptree& root, const std::string& path);
std::vector<At<NodePlace>> findAll(const Node& root, const std::string& path);

/// "[]", "[*]" or ".." occurs.
bool marksEvery(const std::string& path);
/// ".." occurs.
bool hasBoostArray(const std::string& path);

/// "[]" and "[*]" do not count: "hardwarePlatform[].name" is an older path.
bool isLegacy(const std::string& path);
/// The path with a legacy root replaced by the one that the document holds.
std::string withActualRoot(const ptree& root, const std::string& path);
std::string withActualRoot(const Node& root, const std::string& path);
std::string actualRoot(const ptree& root);
std::string replaceLegacy(const std::string& path, const std::string& root);

/// The objects at a path, as NativeObjectService::getObjectsByPath.
ptree objectsAt(const Node& root, const std::string& path, bool& found);

}  // namespace mav::platform::paths
