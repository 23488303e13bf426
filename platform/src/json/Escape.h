// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "json/ShortText.h"

namespace mav_platform::json {

/// Copies a text with the escapes of Boost's JSON writer and answers the end of the copy. `out`
/// needs `escapeRoom(text)` bytes and may be overwritten up to TextBuffer::SLACK bytes behind.
char* escapeAny(char* out, std::string_view text);

/// The same, in one piece for the short texts that need no escape, which most are.
inline char* escape(char* out, std::string_view text) {
    char* const end = text.size() - 1 < 16 ? putPlain(out, text) : nullptr;
    return end != nullptr ? end : escapeAny(out, text);
}

/// The text as a JSON string, quotation marks included.
std::string quoted(std::string_view text);

/// The size of the escaped text.
std::size_t escapedSize(std::string_view text);

/// Room for the escaped text: a quick bound for short texts, exact for long ones.
inline std::size_t escapeRoom(std::string_view text) {
    constexpr std::size_t SHORT = 4096;
    constexpr std::size_t LONGEST_ESCAPE = 6;
    return text.size() <= SHORT ? LONGEST_ESCAPE * text.size() : escapedSize(text);
}

/// Reads an escaped text up to its closing quotation mark, appends it to `out` decoded and answers
/// the place behind the mark. Only for text that `escape` made.
const char* unescape(const char* cur, std::string& out);

/// Writes `count` spaces and answers their end; may overwrite up to TextBuffer::SLACK bytes behind.
inline char* putSpaces(char* out, std::size_t count) {
    constexpr std::string_view SPACES = "                ";
    char* const end = out + count;
    for (; out < end; out += SPACES.size()) std::memcpy(out, SPACES.data(), SPACES.size());
    return end;
}

}  // namespace mav_platform::json
