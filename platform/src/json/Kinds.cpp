// SPDX-License-Identifier: Apache-2.0
#include "json/Kinds.h"

namespace mav_platform::json {

std::string shown(std::string_view text) {
    constexpr std::size_t LONGEST = 60;
    const bool whole = text.size() <= LONGEST;
    std::size_t end = whole ? text.size() : LONGEST;
    // A character is shown whole or not at all.
    while (!whole && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
    std::string quoted = "'";
    quoted.append(text.substr(0, end)).append(whole ? "'" : "…'");
    return quoted;
}

namespace {

bool requireChildren(const Node& node, bool list) {
    if (node.hasChildren() && node.isList() == list) return true;
    if (isNothing(node)) return false;
    std::string sentence = "holds ";
    if (node.hasChildren()) {
        sentence += list ? "an object" : "a list";
    } else {
        sentence.append("the text ").append(shown(node.data()));
    }
    throw ConversionError(
        sentence.append(list ? " where a list" : " where an object").append(" is expected"));
}

}  // namespace

bool isNothing(const Node& node) {
    return !node.hasChildren() && (node.data().empty() || node.data() == "null");
}

void refuseChildren(const Node& node) {
    throw ConversionError(std::string("holds ") + (node.isList() ? "a list" : "an object") +
                          " where a text is expected");
}

bool requireList(const Node& node) {
    return requireChildren(node, true);
}

bool requireObject(const Node& node) {
    return requireChildren(node, false);
}

}  // namespace mav_platform::json
