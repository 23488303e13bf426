// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The one place where texts become numbers and booleans. Names say what failure means.
namespace mav_platform::json {

/// `strtol` in base 10: leading blanks and a sign are taken, reading ends at the first other
/// character, no digits give 0, and values out of range saturate. Empty text gives the default.
long toLong(std::string_view text, long dflt);

/// toLong cut to 32 bits, so that "4294967295" reads as -1. Empty text gives the default.
int toInt(std::string_view text, int dflt);

/// The standard string-to-unsigned-long conversion in base 10: leading blanks and a sign are taken
/// (a minus wraps around), trailing text is ignored; the 32-bit form keeps the low 32 of the 64
/// bits. Text without digits and numbers beyond 64 bits are reported through "@74-268@%s" and give
/// the default, as empty text does without a report.
unsigned toUnsigned(std::string_view text, unsigned dflt);
std::uint64_t toUnsigned64(std::string_view text, std::uint64_t dflt);

/// True only for "true" in any letter case.
bool toBool(std::string_view text);

/// Digits alone, or "0x" and hexadecimal digits alone; nothing for any other text or one that does
/// not fit 64 bits.
std::optional<std::uint64_t> toDecimalOrHex(std::string_view text);

}  // namespace mav_platform::json
