// SPDX-License-Identifier: Apache-2.0
#include "mav_host/Printable.h"

#include <algorithm>
#include <array>

#include "mav_host/HI18N.h"

namespace {

/// The character at the front of a text: its code point, or its only byte when it is no UTF-8.
struct Character {
    char32_t code;
    std::size_t bytes;
    bool valid;
};

Character first(std::string_view text) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = at(0);
    if (lead < 0x80) return {lead, 1, true};
    const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (!HI18N_isUTF8(text.substr(0, bytes))) return {lead, 1, false};
    char32_t code = lead & (0x7FU >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) code = (code << 6U) | (at(i) & 0x3FU);
    return {code, bytes, true};
}

bool isHarmful(char32_t code) {
    struct Range {
        char32_t from, to;
    };
    static constexpr std::array<Range, 6> RANGES{{{0, 0x1F},
                                                  {0x7F, 0x9F},
                                                  {0x61C, 0x61C},
                                                  {0x200E, 0x200F},
                                                  {0x2028, 0x202E},
                                                  {0x2066, 0x206F}}};
    return std::any_of(RANGES.begin(), RANGES.end(), [code](const Range& range) {
        return code >= range.from && code <= range.to;
    });
}

void appendHex(std::string& shown, const char* start, char32_t code, unsigned digits) {
    constexpr std::string_view HEX = "0123456789ABCDEF";
    shown += start;
    while (digits-- > 0) shown += HEX[(code >> (4 * digits)) & 0xFU];
}

}  // namespace

std::string mav_host::printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Character next = first(text);
        if (next.valid && !isHarmful(next.code)) {
            shown += text.substr(0, next.bytes);
        } else if (next.bytes == 1) {
            appendHex(shown, "\\x", next.code, 2);
        } else {
            appendHex(shown, "\\u", next.code, 4);
        }
        text.remove_prefix(next.bytes);
    }
    return shown;
}

std::string_view mav_host::beginning(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U) --bytes;
    return text.substr(0, bytes);
}
