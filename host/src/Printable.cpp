// SPDX-License-Identifier: Apache-2.0
#include "mav_host/Printable.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <streambuf>

#include "mav_host/HI18N.h"

namespace {

/// The character at the front of a text: its code point, or its only byte when it is no UTF-8.
struct Character {
    char32_t code;
    std::size_t bytes;
    bool valid;
};

Character first(std::string_view text) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = at(0);
    if (lead < 0x80) return {lead, 1, true};
    const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (!HI18N_isUTF8(text.substr(0, bytes))) return {lead, 1, false};
    char32_t code = lead & (0x7FU >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) code = (code << 6U) | (at(i) & 0x3FU);
    return {code, bytes, true};
}

bool isHarmful(char32_t code) {
    struct Range {
        char32_t from, to;
    };
    static constexpr std::array<Range, 6> RANGES{{{0, 0x1F},
                                                  {0x7F, 0x9F},
                                                  {0x61C, 0x61C},
                                                  {0x200E, 0x200F},
                                                  {0x2028, 0x202E},
                                                  {0x2066, 0x206F}}};
    return std::any_of(RANGES.begin(), RANGES.end(), [code](const Range& range) {
        return code >= range.from && code <= range.to;
    });
}

void appendHex(std::string& shown, const char* start, char32_t code, unsigned digits) {
    constexpr std::string_view HEX = "0123456789ABCDEF";
    shown += start;
    while (digits-- > 0) shown += HEX[(code >> (4 * digits)) & 0xFU];
}

/// Gathers lines and hands them on printable.
class PrintableLines final : public std::streambuf {
  public:
    explicit PrintableLines(std::ostream& to) : to_(to) {}
    ~PrintableLines() override { handOn(gathered_.size()); }

  private:
    int_type overflow(int_type next) override {
        const char c = traits_type::to_char_type(next);
        if (!traits_type::eq_int_type(next, traits_type::eof())) xsputn(&c, 1);
        return to_.good() ? traits_type::not_eof(next) : traits_type::eof();
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        gathered_.append(text, static_cast<std::size_t>(size));
        handOn(gathered_.rfind('\n') + 1);
        return to_.good() ? size : 0;
    }
    int sync() override {
        handOn(gathered_.size());
        return to_.flush() ? 0 : -1;
    }
    void handOn(std::size_t size) {
        if (size == 0) return;
        to_ << mav_host::printableLines(std::string_view(gathered_).substr(0, size));
        gathered_.erase(0, size);
    }

    std::ostream& to_;
    std::string gathered_;
};

class PrintableStream final : public std::ostream {
  public:
    explicit PrintableStream(std::ostream& to) : std::ostream(nullptr), lines_(to) {
        rdbuf(&lines_);
    }

  private:
    PrintableLines lines_;
};

std::ostream& printableOutput() {
    thread_local PrintableStream stream(std::cout);
    return stream;
}

}  // namespace

std::string mav_host::printableLines(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        shown += printable(line);
        text.remove_prefix(line.size());
        if (text.empty()) break;
        shown += '\n';
        text.remove_prefix(1);
    }
    return shown;
}

std::ostream& mav_host::printableErrors() {
    thread_local PrintableStream stream(std::cerr);
    return stream;
}

std::ostream& mav_host::shownOutput() {
    return ::isatty(STDOUT_FILENO) == 1 ? printableOutput() : std::cout;
}

std::ostream& mav_host::shownErrors() {
    return ::isatty(STDERR_FILENO) == 1 ? printableErrors() : std::cerr;
}

std::string mav_host::printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Character next = first(text);
        if (next.valid && !isHarmful(next.code)) {
            shown += text.substr(0, next.bytes);
        } else if (next.bytes == 1) {
            appendHex(shown, "\\x", next.code, 2);
        } else {
            appendHex(shown, "\\u", next.code, 4);
        }
        text.remove_prefix(next.bytes);
    }
    return shown;
}

std::string_view mav_host::beginning(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U) --bytes;
    return text.substr(0, bytes);
}
