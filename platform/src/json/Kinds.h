// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "json/Document.h"

namespace mav_platform::json {

/// A value that does not convert, or a required key that is not there.
class ConversionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A foreign text in quotes, cut behind 60 bytes.
std::string shown(std::string_view text);
/// Throws ConversionError for a node with children.
[[noreturn]] void refuseChildren(const Node& node);
/// Throws ConversionError unless the node holds a text.
inline void requireText(const Node& node) {
    if (node.hasChildren()) refuseChildren(node);
}
/// True for an empty text and for "null".
bool isNothing(const Node& node);
/// True when the node holds a list with items. Throws ConversionError for an object and for a text;
/// an empty text and "null" are an empty list.
bool requireList(const Node& node);
/// True when the node holds an object with members; throws as requireList does.
bool requireObject(const Node& node);

}  // namespace mav_platform::json
