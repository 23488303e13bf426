// SPDX-License-Identifier: Apache-2.0
#include "json/Convert.h"

#include <charconv>
#include <limits>
#include <string>

#include "mav_host/Messages.h"

namespace mav_platform::json {
namespace {

/// What the C conversions take: blanks, a sign, digits.
struct Number {
    bool hasDigits = false;
    bool negative = false;
    bool overflow = false;
    std::uint64_t magnitude = 0;
};

/// Plain digits that cannot overflow, as nearly every number of a document is. False for any other
/// text.
bool isShort(std::string_view text, std::uint32_t& value) {
    constexpr std::size_t MOST_DIGITS = 9;
    if (text.size() > MOST_DIGITS) return false;
    value = 0;
    for (const char c : text) {
        const auto digit = static_cast<std::uint32_t>(static_cast<unsigned char>(c)) - '0';
        if (digit > 9) return false;
        value = value * 10 + digit;
    }
    return true;
}

Number scan(std::string_view text) {
    Number number;
    std::size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        number.negative = text[at++] == '-';
    }
    const char* const first = text.data() + at;
    const auto [end, error] =
        std::from_chars(first, text.data() + text.size(), number.magnitude, 10);
    number.hasDigits = end != first;
    number.overflow = error == std::errc::result_out_of_range;
    return number;
}

void reportUnconverted(std::string_view text) {
    mav_host::report(mav_host::messages::NOT_UNSIGNED, std::string(text));
}

}  // namespace

long toLong(std::string_view text, long dflt) {
    if (text.empty()) return dflt;
    constexpr long MAX = std::numeric_limits<long>::max();
    constexpr long MIN = std::numeric_limits<long>::min();
    if (std::uint32_t plain = 0; isShort(text, plain)) return plain;
    const Number number = scan(text);
    if (number.overflow || number.magnitude > static_cast<std::uint64_t>(MAX)) {
        return number.negative ? MIN : MAX;
    }
    const long value = static_cast<long>(number.magnitude);
    return number.negative ? -value : value;
}

int toInt(std::string_view text, int dflt) {
    return text.empty() ? dflt : static_cast<int>(toLong(text, 0));
}

std::uint64_t toUnsigned64(std::string_view text, std::uint64_t dflt) {
    if (text.empty()) return dflt;
    const Number number = scan(text);
    if (!number.hasDigits || number.overflow) {
        reportUnconverted(text);
        return dflt;
    }
    return number.negative ? 0 - number.magnitude : number.magnitude;
}

unsigned toUnsigned(std::string_view text, unsigned dflt) {
    if (text.empty()) return dflt;
    if (std::uint32_t plain = 0; isShort(text, plain)) return plain;
    return static_cast<unsigned>(toUnsigned64(text, dflt));
}

bool toBool(std::string_view text) {
    return text.size() == 4 && (text[0] | 0x20) == 't' && (text[1] | 0x20) == 'r' &&
           (text[2] | 0x20) == 'u' && (text[3] | 0x20) == 'e';
}

std::optional<std::uint64_t> toDecimalOrHex(std::string_view text) {
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (hex) text.remove_prefix(2);
    std::uint64_t value = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace mav_platform::json
