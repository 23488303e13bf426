// SPDX-License-Identifier: Apache-2.0
#include "services/Release.h"

#include <stdexcept>

namespace mav::platform {

Release Release::of(const std::string& text) {
    try {
        Release release;
        const std::size_t dot = text.find('.');
        release.year = std::stoi(text.substr(0, dot));
        if (dot != std::string::npos) release.number = std::stoi(text.substr(dot + 1));
        return release;
    } catch (const std::logic_error&) {
        return {};
    }
}

}  // namespace mav::platform
