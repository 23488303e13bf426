// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace mav_platform::json {

/// The first byte of a JSON string that needs a look: a quotation mark, a reverse solidus, a
/// control character or a byte above ASCII. Answers `end` when there is none.
inline char* findSpecial(char* cur, const char* end) {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i solidus = _mm_set1_epi8('\\');
    const __m128i space = _mm_set1_epi8(' ');
    while (end - cur >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cur));
        // The comparison is signed, so bytes above ASCII count as smaller than a space.
        const __m128i hits =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, quote), _mm_cmpeq_epi8(bytes, solidus)),
                         _mm_cmplt_epi8(bytes, space));
        const int mask = _mm_movemask_epi8(hits);
        if (mask != 0) return cur + __builtin_ctz(static_cast<unsigned>(mask));
        cur += 16;
    }
#endif
    while (cur != end) {
        const auto c = static_cast<signed char>(*cur);
        if (c < ' ' || c == '"' || c == '\\') break;
        ++cur;
    }
    return cur;
}

/// The first byte that is no space. Answers `end` when there is none.
inline char* skipSpaces(char* cur, const char* end) {
#if defined(__SSE2__)
    const __m128i space = _mm_set1_epi8(' ');
    while (end - cur >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cur));
        const unsigned mask =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, space))) ^ 0xFFFFU;
        if (mask != 0) return cur + __builtin_ctz(mask);
        cur += 16;
    }
#endif
    while (cur != end && *cur == ' ') ++cur;
    return cur;
}

}  // namespace mav_platform::json
