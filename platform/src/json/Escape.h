// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mav_platform::json {

/// Copies a text with the escapes of Boost's JSON writer and answers the end of the copy. `out`
/// needs `escapeRoom(text)` bytes and may be overwritten up to TextBuffer::SLACK bytes behind.
char* escape(char* out, std::string_view text);

/// Room for the escaped text: a quick bound for short texts, exact for long ones.
std::size_t escapeRoom(std::string_view text);

/// Reads an escaped text up to its closing quotation mark, appends it to `out` decoded and answers
/// the place behind the mark. Only for text that `escape` made.
const char* unescape(const char* cur, std::string& out);

/// Writes `count` spaces and answers their end; may overwrite up to TextBuffer::SLACK bytes behind.
char* putSpaces(char* out, std::size_t count);

}  // namespace mav_platform::json
