// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "mav_host/Export.h"

namespace mav_host::xml {

/// A decimal number as it was written, without the white space around it. Kept as text because a
/// version "2.10" is not the version "2.1".
struct Decimal {
    std::string text;
};

/// `[+-]?(digits[.digits*]|.digits)`, white space around it allowed. False, with `out` unchanged,
/// for anything else. The other conversions answer alike.
MAV_API bool readValue(std::string_view text, Decimal& out);
/// Any text, white space kept. Always true.
MAV_API bool readValue(std::string_view text, std::string& out);
/// "true", "false", "1" or "0".
MAV_API bool readValue(std::string_view text, bool& out);

namespace detail {
MAV_API bool readSigned(std::string_view text, std::int64_t low, std::int64_t high,
                        std::int64_t& out);
MAV_API bool readUnsigned(std::string_view text, std::uint64_t high, std::uint64_t& out);
}  // namespace detail

/// Decimal digits with an optional sign, within the range of the type.
template <std::signed_integral I>
bool readValue(std::string_view text, I& out) {
    std::int64_t value = 0;
    if (!detail::readSigned(text, std::numeric_limits<I>::min(), std::numeric_limits<I>::max(),
                            value))
        return false;
    out = static_cast<I>(value);
    return true;
}

/// Decimal digits with an optional plus sign, within the range of the type. A minus sign is refused
/// even before 0.
template <std::unsigned_integral U>
requires(!std::same_as<U, bool>) bool readValue(std::string_view text, U& out) {
    std::uint64_t value = 0;
    if (!detail::readUnsigned(text, std::numeric_limits<U>::max(), value)) return false;
    out = static_cast<U>(value);
    return true;
}

/// What an error says that a value of the type should have been: "'abc' is not …".
template <class T>
std::string expectedValue() {
    if constexpr (std::same_as<T, Decimal>)
        return "a decimal number";
    else if constexpr (std::same_as<T, bool>)
        return "a boolean (true, false, 1 or 0)";
    else if constexpr (std::unsigned_integral<T>)
        return "an integer from 0 to " + std::to_string(std::numeric_limits<T>::max());
    else if constexpr (std::signed_integral<T>)
        return "an integer from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
               std::to_string(std::numeric_limits<T>::max());
    else
        return "a text";
}

}  // namespace mav_host::xml
