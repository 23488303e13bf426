// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace mav_host {

/// Letters of ASCII alone change their case: the names of formats mean the same in every locale.
inline char lowerLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
inline char upperLetter(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), lowerLetter);
    return text;
}
inline std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), upperLetter);
    return text;
}

inline bool equalLetters(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerLetter(x) == lowerLetter(y); });
}

}  // namespace mav_host
