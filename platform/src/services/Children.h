// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string_view>

#include "json/Document.h"

namespace mav::platform {

/// Calls `visit(key, child)` for the children of a node in their order; the key of an element is
/// empty.
template <class Visit>
void forEachChild(const boost::property_tree::ptree& node, Visit visit) {
    for (const auto& [key, child] : node) visit(std::string_view(key), child);
}
template <class Visit>
void forEachChild(const mav_platform::json::Node& node, Visit visit) {
    for (const mav_platform::json::Node& child : node) visit(child.key(), child);
}

}  // namespace mav::platform
