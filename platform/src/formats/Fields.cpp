// SPDX-License-Identifier: Apache-2.0
#include "formats/Fields.h"

namespace mav_platform::metadata {

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

unsigned long long decimalOrHex(const json::Node& node) {
    requireText(node);
    if (node.data().empty()) return 0;
    if (const auto value = json::toDecimalOrHex(node.data())) return *value;
    throw ConversionError(json::shown(node.data()) +
                          " is no decimal number and no hexadecimal one with "
                          "0x");
}

}  // namespace mav_platform::metadata
