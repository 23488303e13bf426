// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HI18N.h"

#include <cstdint>
#include <cstring>

namespace {

bool isTrail(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// Bytes before the first one that is not ASCII, looked at eight at a time.
std::size_t asciiRun(std::string_view text) {
    constexpr std::uint64_t HIGH_BITS = 0x8080808080808080U;
    std::size_t at = 0;
    for (; at + 4 * sizeof(std::uint64_t) <= text.size(); at += 4 * sizeof(std::uint64_t)) {
        std::uint64_t bytes[4];
        std::memcpy(bytes, text.data() + at, sizeof(bytes));
        if (((bytes[0] | bytes[1] | bytes[2] | bytes[3]) & HIGH_BITS) != 0) break;
    }
    for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text.data() + at, sizeof(bytes));
        if ((bytes & HIGH_BITS) != 0) break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}

/// Bytes of the well-formed sequence at the front, which is not ASCII; 0 when it is not
/// well-formed.
std::size_t sequence(std::string_view text) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = at(0);
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if (!isTrail(text[i])) return 0;
    }
    const unsigned second = at(1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool beyond = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
    return overlong || beyond ? 0 : size;
}

}  // namespace

bool HI18N_isAscii(std::string_view text) {
    return asciiRun(text) == text.size();
}

bool HI18N_isUTF8(std::string_view text) {
    for (text.remove_prefix(asciiRun(text)); !text.empty(); text.remove_prefix(asciiRun(text))) {
        const std::size_t size = sequence(text);
        if (size == 0) return false;
        text.remove_prefix(size);
    }
    return true;
}

std::string HI18N_convertToUTF8(std::string_view text) {
    if (HI18N_isUTF8(text)) return std::string(text);
    std::string converted;
    converted.reserve(text.size() + text.size() / 2);
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80) {
            converted += c;
        } else {
            converted += static_cast<char>(0xC0U | (code >> 6U));
            converted += static_cast<char>(0x80U | (code & 0x3FU));
        }
    }
    return converted;
}
