// SPDX-License-Identifier: Apache-2.0
#include "json/Escape.h"

#include <array>

#include "json/TextBuffer.h"

namespace mav_platform::json {

namespace {

/// For each byte: 0 as it stands, 'u' as \u00XX, else the letter behind the reverse solidus.
constexpr std::array<char, 256> makeEscapes() {
    std::array<char, 256> escapes{};
    for (std::size_t c = 0; c < 0x20; ++c) escapes[c] = 'u';
    escapes['\b'] = 'b';
    escapes['\f'] = 'f';
    escapes['\n'] = 'n';
    escapes['\r'] = 'r';
    escapes['\t'] = 't';
    escapes['/'] = '/';
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    return escapes;
}
constexpr std::array<char, 256> ESCAPES = makeEscapes();
constexpr std::size_t LONGEST_ESCAPE = 6;

char* putByte(char* out, char c) {
    const char letter = ESCAPES[static_cast<unsigned char>(c)];
    if (letter == 0) {
        *out++ = c;
        return out;
    }
    *out++ = '\\';
    *out++ = letter;
    if (letter == 'u') {
        constexpr std::string_view DIGITS = "0123456789ABCDEF";
        const auto code = static_cast<unsigned char>(c);
        *out++ = '0';
        *out++ = '0';
        *out++ = DIGITS[code >> 4];
        *out++ = DIGITS[code & 15U];
    }
    return out;
}

char* putBytes(char* out, const char* cur, const char* end) {
    for (; cur != end; ++cur) out = putByte(out, *cur);
    return out;
}

}  // namespace

char* escapeAny(char* out, std::string_view text) {
    const char* cur = text.data();
    const char* const end = cur + text.size();
#if defined(__SSE2__)
    while (end - cur >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cur));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
        const unsigned mask = specials(bytes);
        if (mask == 0) {
            cur += 16;
            out += 16;
        } else {
            const int plain = __builtin_ctz(mask);
            out = putByte(out + plain, cur[plain]);
            cur += plain + 1;
        }
    }
    if (cur == end) return out;
    char* const plain = putPlain(out, {cur, static_cast<std::size_t>(end - cur)});
    if (plain != nullptr) return plain;
#endif
    return putBytes(out, cur, end);
}

std::string quoted(std::string_view text) {
    std::string out(escapeRoom(text) + TextBuffer::SLACK + 2, '"');
    char* end = escape(out.data() + 1, text);
    *end++ = '"';
    out.resize(static_cast<std::size_t>(end - out.data()));
    return out;
}

std::size_t escapedSize(std::string_view text) {
    std::size_t size = text.size();
    for (const char c : text) {
        const char letter = ESCAPES[static_cast<unsigned char>(c)];
        if (letter != 0) size += letter == 'u' ? LONGEST_ESCAPE - 1 : 1;
    }
    return size;
}

const char* unescape(const char* cur, std::string& out) {
    for (;;) {
        const char* const plain = cur;
        while (*cur != '"' && *cur != '\\') ++cur;
        out.append(plain, cur);
        if (*cur == '"') return cur + 1;
        const char letter = cur[1];
        cur += 2;
        if (letter == 'u') {
            const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
            out += static_cast<char>(digit(cur[2]) * 16 + digit(cur[3]));
            cur += 4;
        } else {
            constexpr std::string_view LETTERS = "bfnrt";
            constexpr std::string_view MEANING = "\b\f\n\r\t";
            const std::size_t index = LETTERS.find(letter);
            out += index == std::string_view::npos ? letter : MEANING[index];
        }
    }
}

}  // namespace mav_platform::json
