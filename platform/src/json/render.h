// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>

#include "json/TextBuffer.h"

namespace mav_platform::json {

/// True when JSON can express the tree below a key: no node has both data and children.
bool isRepresentable(const boost::property_tree::ptree& tree);

/// Appends the tree as a pretty value at a depth, as Boost's writer prints it there. Depth 0 is the
/// document itself, which is always an object.
void render(const boost::property_tree::ptree& tree, std::size_t depth, detail::TextBuffer& out);

/// The whole document with its line end. Throws Boost's json_parser_error "ptree contains data that
/// cannot be represented in JSON format".
void renderDocument(const boost::property_tree::ptree& tree, detail::TextBuffer& out);

}  // namespace mav_platform::json
