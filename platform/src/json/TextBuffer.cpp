// SPDX-License-Identifier: Apache-2.0
#include "json/TextBuffer.h"

#include <algorithm>

#include "json/scan.h"

namespace mav_platform::detail {

void TextBuffer::grow(std::size_t more) {
    constexpr std::size_t SMALLEST = 1024;
    const std::size_t wanted = std::max({size_ + more, capacity_ + capacity_ / 2, SMALLEST});
    void* const moved = std::realloc(data_, wanted);
    if (moved == nullptr) throw std::bad_alloc();
    data_ = static_cast<char*>(moved);
    capacity_ = wanted;
}

void TextBuffer::appendEscaped(std::string_view text) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        const char* const run = json::findEscape(at, end);
        append({at, static_cast<std::size_t>(run - at)});
        if (run == end) return;
        const char c = *run;
        switch (c) {
            case '\b':
                append("\\b");
                break;
            case '\f':
                append("\\f");
                break;
            case '\n':
                append("\\n");
                break;
            case '\r':
                append("\\r");
                break;
            case '\t':
                append("\\t");
                break;
            case '/':
                append("\\/");
                break;
            case '"':
                append("\\\"");
                break;
            case '\\':
                append("\\\\");
                break;
            default: {
                constexpr char HEX[] = "0123456789ABCDEF";
                const auto code = static_cast<unsigned char>(c);
                append("\\u00");
                append(HEX[code >> 4]);
                append(HEX[code & 15]);
            }
        }
        at = run + 1;
    }
}

}  // namespace mav_platform::detail
