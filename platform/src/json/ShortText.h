// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace mav_platform::json {

/// Both ends of a text, all of one of at most 16 bytes: the words overlap, or bytes stand in them
/// several times, as the size has it. Of a text without bytes both are 0.
struct Ends {
    std::uint64_t head, tail;
};

template <class Word>
Word loadWord(const char* from) {
    Word word;
    std::memcpy(&word, from, sizeof(word));
    return word;
}

inline Ends endsOf(std::string_view text) {
    const char* const at = text.data();
    const std::size_t size = text.size();
    if (size >= 8) return {loadWord<std::uint64_t>(at), loadWord<std::uint64_t>(at + size - 8)};
    std::uint64_t word = 0;
    if (size >= 4) {
        word = std::uint64_t{loadWord<std::uint32_t>(at + size - 4)} << 32;
        word |= loadWord<std::uint32_t>(at);
    } else if (size > 0) {
        constexpr std::uint64_t TWICE = 0x0000'0001'0000'0001;
        const auto byte = [at](std::size_t i) {
            return std::uint64_t{static_cast<unsigned char>(at[i])};
        };
        word =
            (byte(0) | byte(size / 2) << 8 | byte(size - 1) << 16 | byte(size - 1) << 24) * TWICE;
    }
    return {word, word};
}

#if defined(__SSE2__)

/// A bit for each byte that JSON text holds with an escape only.
inline unsigned specials(__m128i bytes) {
    const __m128i control = _mm_set1_epi8(0x1F);
    const __m128i hits =
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')),
                                  _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\'))),
                     _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('/')),
                                  _mm_cmpeq_epi8(_mm_min_epu8(bytes, control), bytes)));
    return static_cast<unsigned>(_mm_movemask_epi8(hits));
}

/// Writes a text of 1 to 16 bytes in one piece and answers its end; null, with nothing written,
/// when it needs an escape. Up to TextBuffer::SLACK bytes behind may be overwritten.
inline char* putPlain(char* out, std::string_view text) {
    const Ends ends = endsOf(text);
    const __m128i bytes =
        _mm_set_epi64x(static_cast<long long>(ends.tail), static_cast<long long>(ends.head));
    if (specials(bytes) != 0) return nullptr;
    const std::size_t size = text.size();
    if (size < 4) {
        std::memcpy(out, &ends.head, 4);
    } else if (size < 8) {
        const auto last = static_cast<std::uint32_t>(ends.tail >> 32);
        std::memcpy(out, &ends.head, 4);
        std::memcpy(out + size - 4, &last, 4);
    } else {
        std::memcpy(out, &ends.head, 8);
        std::memcpy(out + size - 8, &ends.tail, 8);
    }
    return out + size;
}

#else

inline char* putPlain(char*, std::string_view) {
    return nullptr;
}

#endif

}  // namespace mav_platform::json
