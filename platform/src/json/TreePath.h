// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string_view>

namespace mav_platform::json {

/// The node at a path whose parts are separated by "."; null when there is none. The empty path is
/// the tree itself, and a separator at the end adds no part.
boost::property_tree::ptree* findPath(boost::property_tree::ptree& tree, std::string_view path);
const boost::property_tree::ptree* findPath(const boost::property_tree::ptree& tree,
                                            std::string_view path);

/// Appends a new child at a path, making what is missing above it. Here a separator at the end does
/// add a part, an empty one.
boost::property_tree::ptree& addPath(boost::property_tree::ptree& tree, std::string_view path);

}  // namespace mav_platform::json
