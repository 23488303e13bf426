// SPDX-License-Identifier: Apache-2.0
#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cstring>

/// Searches over runs of text, sixteen bytes at a time where the processor can.
namespace mav_platform::json {

/// True for a byte that ends the plain run of a JSON string when reading: quote, backslash, control
/// character, or a byte outside ASCII.
inline bool endsPlainRun(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code < 0x20 || code >= 0x80 || c == '"' || c == '\\';
}

/// True for a byte that the writer escapes.
inline bool isEscaped(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == '/';
}

/// The first byte in [at, end) that ends a plain run, else `end`.
inline const char* findRunEnd(const char* at, const char* end) {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i blank = _mm_set1_epi8(' ');
    while (end - at >= 16) {
        __m128i bytes;
        std::memcpy(&bytes, at, sizeof(bytes));
        // As signed bytes, control characters and bytes outside ASCII are both below a blank.
        const __m128i hits = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, quote), _mm_cmpeq_epi8(bytes, backslash)),
            _mm_cmplt_epi8(bytes, blank));
        const int mask = _mm_movemask_epi8(hits);
        if (mask != 0) return at + __builtin_ctz(static_cast<unsigned>(mask));
        at += 16;
    }
#endif
    while (at != end && !endsPlainRun(*at)) ++at;
    return at;
}

/// The first byte in [at, end) that the writer escapes, else `end`.
inline const char* findEscape(const char* at, const char* end) {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i slash = _mm_set1_epi8('/');
    const __m128i lastControl = _mm_set1_epi8(0x1F);
    while (end - at >= 16) {
        __m128i bytes;
        std::memcpy(&bytes, at, sizeof(bytes));
        const __m128i marks =
            _mm_or_si128(_mm_cmpeq_epi8(bytes, quote), _mm_cmpeq_epi8(bytes, backslash));
        const __m128i controls = _mm_cmpeq_epi8(_mm_min_epu8(bytes, lastControl), bytes);
        const __m128i hits =
            _mm_or_si128(_mm_or_si128(marks, controls), _mm_cmpeq_epi8(bytes, slash));
        const int mask = _mm_movemask_epi8(hits);
        if (mask != 0) return at + __builtin_ctz(static_cast<unsigned>(mask));
        at += 16;
    }
#endif
    while (at != end && !isEscaped(*at)) ++at;
    return at;
}

/// The first byte in [at, end) that is no blank, else `end`.
inline const char* skipSpaces(const char* at, const char* end) {
#if defined(__SSE2__)
    const __m128i blank = _mm_set1_epi8(' ');
    while (end - at >= 16) {
        __m128i bytes;
        std::memcpy(&bytes, at, sizeof(bytes));
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, blank));
        if (mask != 0xFFFF) return at + __builtin_ctz(~static_cast<unsigned>(mask));
        at += 16;
    }
#endif
    while (at != end && *at == ' ') ++at;
    return at;
}

}  // namespace mav_platform::json
