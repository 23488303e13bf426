// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xml/Values.h"

#include <charconv>
#include <system_error>

namespace mav_host::xml {
namespace {

constexpr std::string_view BLANKS = " \t\r\n";

std::string_view trim(std::string_view text) {
    const std::size_t from = text.find_first_not_of(BLANKS);
    if (from == std::string_view::npos) return {};
    return text.substr(from, text.find_last_not_of(BLANKS) - from + 1);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t countDigits(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count])) ++count;
    return count;
}

/// Removes a plus sign that digits follow, which from_chars does not take.
std::string_view withoutPlus(std::string_view text) {
    return text.size() > 1 && text[0] == '+' && isDigit(text[1]) ? text.substr(1) : text;
}

template <class I>
bool readWhole(std::string_view text, I& out) {
    const char* end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, out);
    return fault == std::errc() && stop == end;
}

}  // namespace

bool readValue(std::string_view text, Decimal& out) {
    const std::string_view number = trim(text);
    std::string_view rest = number;
    if (!rest.empty() && (rest[0] == '+' || rest[0] == '-')) rest.remove_prefix(1);
    const std::size_t whole = countDigits(rest);
    rest.remove_prefix(whole);
    std::size_t part = 0;
    if (!rest.empty() && rest[0] == '.') {
        rest.remove_prefix(1);
        part = countDigits(rest);
        rest.remove_prefix(part);
    }
    if (!rest.empty() || whole + part == 0) return false;
    out.text.assign(number);
    return true;
}

bool readValue(std::string_view text, std::string& out) {
    out.assign(text);
    return true;
}

bool readValue(std::string_view text, bool& out) {
    const std::string_view word = trim(text);
    if (word == "true" || word == "1")
        out = true;
    else if (word == "false" || word == "0")
        out = false;
    else
        return false;
    return true;
}

namespace detail {

bool readSigned(std::string_view text, std::int64_t low, std::int64_t high, std::int64_t& out) {
    return readWhole(withoutPlus(trim(text)), out) && out >= low && out <= high;
}

bool readUnsigned(std::string_view text, std::uint64_t high, std::uint64_t& out) {
    return readWhole(withoutPlus(trim(text)), out) && out <= high;
}

}  // namespace detail
}  // namespace mav_host::xml
