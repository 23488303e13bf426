// SPDX-License-Identifier: Apache-2.0
#include "formats/Fields.h"

namespace mav_platform::metadata {
namespace {

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

bool requireChildren(const json::Node& node, bool list) {
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

bool isNothing(const json::Node& node) {
    return !node.hasChildren() && (node.data().empty() || node.data() == "null");
}

std::string Trail::text() const {
    std::string text;
    for (const Step& step : steps_) {
        if (step.index != NONE) {
            text.append("[").append(std::to_string(step.index)).append("]");
        } else {
            if (!text.empty()) text += ".";
            text += step.key;
        }
    }
    return text;
}

void refuseChildren(const json::Node& node) {
    throw ConversionError(std::string("holds ") + (node.isList() ? "a list" : "an object") +
                          " where a text is expected");
}

bool requireList(const json::Node& node) {
    return requireChildren(node, true);
}

bool requireObject(const json::Node& node) {
    return requireChildren(node, false);
}

unsigned long long decimalOrHex(const json::Node& node) {
    requireText(node);
    if (node.data().empty()) return 0;
    if (const auto value = json::toDecimalOrHex(node.data())) return *value;
    throw ConversionError(shown(node.data()) +
                          " is no decimal number and no hexadecimal one with "
                          "0x");
}

}  // namespace mav_platform::metadata
