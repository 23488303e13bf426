// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <string>
#include <string_view>

#include "json/TextBuffer.h"

namespace mav_platform::json {

/// Prints a node and all below it as a value whose container sits at nesting `depth` (root: 0), as
/// Boost's pretty writer does. False, with the text as it was before, when a node has both data and
/// children. Nesting costs heap, not stack.
bool renderValue(TextBuffer& text, const boost::property_tree::ptree& node, std::size_t depth);

/// Prints a whole tree with a line end behind it. Throws json_parser_error naming `fileName` when
/// the tree cannot be expressed, the text being as it was before.
void renderDocument(TextBuffer& text, const boost::property_tree::ptree& tree,
                    const std::string& fileName = {});

/// The members (or items, for a list) that the writers or `renderValue` printed, back as children
/// of `tree`. `body` is what stands between a container's brackets; it is not validated.
void parseRendered(std::string_view body, bool list, boost::property_tree::ptree& tree);

}  // namespace mav_platform::json
