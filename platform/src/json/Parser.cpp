// SPDX-License-Identifier: Apache-2.0
#include "json/Parser.h"

#include <cstring>

#include "json/Scan.h"
#include "json/SyntaxError.h"

namespace mav_platform::json {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int hexDigit(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

/// The character that an escape letter stands for; 0 for none.
char escapedCharacter(char letter) {
    switch (letter) {
        case '"':
        case '\\':
        case '/':
            return letter;
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return 0;
    }
}

char* putCodepoint(char* out, unsigned code) {
    const auto trail = [&out](unsigned bits) {
        *out++ = static_cast<char>(0x80U | (bits & 0x3FU));
    };
    if (code <= 0x7F) {
        *out++ = static_cast<char>(code);
    } else if (code <= 0x7FF) {
        *out++ = static_cast<char>(0xC0U | (code >> 6));
        trail(code);
    } else if (code <= 0xFFFF) {
        *out++ = static_cast<char>(0xE0U | (code >> 12));
        trail(code >> 6);
        trail(code);
    } else {
        *out++ = static_cast<char>(0xF0U | (code >> 18));
        trail(code >> 12);
        trail(code >> 6);
        trail(code);
    }
    return out;
}

constexpr std::uint32_t MAX_SPAN = (std::uint32_t{1} << 30) - 1;
constexpr std::size_t DENSE_GUESS = 16U << 10U;

}  // namespace

void Parser::fail(const std::string& message) const {
    throw SyntaxError(message, std::string(fileName_), line_,
                      static_cast<std::size_t>(cur_ - text_));
}

void Parser::run() {
    skipByteOrderMark();
    while (value() || nextValue()) {
    }
}

// Boost skips three bytes whatever they are once the first one looks like a mark.
void Parser::skipByteOrderMark() {
    if (cur_ == end_ || static_cast<unsigned char>(*cur_) != 0xEF) return;
    cur_ += end_ - cur_ < 3 ? end_ - cur_ : 3;
}

void Parser::skipWhiteSpaceRun() {
    for (; cur_ != end_; ++cur_) {
        if (*cur_ == '\n') {
            ++line_;
        } else if (*cur_ == ' ') {
            cur_ = skipSpaces(cur_ + 1, end_) - 1;
        } else if (*cur_ != '\t' && *cur_ != '\r') {
            return;
        }
    }
}

void Parser::growCells() {
    if (count_ >= Document::MAX_VALUES) fail("more values than this program accepts");
    const auto size = static_cast<std::size_t>(end_ - text_);
    // Indented text has about one value in 32 bytes, dense text one in 12. For a small one the room
    // is cheaper than to grow.
    const std::size_t guess = size / (size < DENSE_GUESS ? 12 : 32) + 8;
    cells_.grow(sizeof(Cell) * (count_ == 0 ? guess : std::size_t{count_} + 1));
    const std::size_t room = cells_.capacity() / sizeof(Cell);
    room_ = static_cast<std::uint32_t>(room < Document::MAX_VALUES ? room : Document::MAX_VALUES);
}

// Called for every value of a document, from one place or two.
[[gnu::always_inline]] inline Cell& Parser::addCell(Kind kind) {
    if (count_ == room_) growCells();
    Cell& added = cell(count_++);
    added.key = key_;
    added.keySize = keySize_;
    added.data = added.dataSize = 0;
    added.span = 1;
    added.kind = kind;
    return added;
}

[[gnu::always_inline]] inline void Parser::string(std::uint32_t& offset, std::uint32_t& size) {
    char* const begin = cur_;
    cur_ = findSpecial(cur_, end_);
    char* last = cur_;
    if (cur_ == end_ || *cur_ != '"') last = specialCharacters(cur_);
    ++cur_;
    offset = static_cast<std::uint32_t>(begin - text_);
    size = static_cast<std::uint32_t>(last - begin);
}

void Parser::key() {
    skipWhiteSpace();
    expect('"', "expected key string");
    string(key_, keySize_);
    skipWhiteSpace();
    expect(':', "expected ':'");
}

bool Parser::value() {
    skipWhiteSpace();
    if (cur_ == end_) fail("expected value");
    switch (*cur_) {
        case '{':
            return open(true, '}');
        case '[':
            return open(false, ']');
        case '"': {
            ++cur_;
            Cell& text = addCell(Kind::SCALAR);
            string(text.data, text.dataSize);
            return false;
        }
        case 't':
            word(addCell(Kind::SCALAR), "rue", "expected 'true'");
            return false;
        case 'f':
            word(addCell(Kind::SCALAR), "alse", "expected 'false'");
            return false;
        case 'n':
            word(addCell(Kind::SCALAR), "ull", "expected 'null'");
            return false;
        default:
            number(addCell(Kind::SCALAR));
            return false;
    }
}

bool Parser::open(bool object, char close) {
    const std::uint32_t index = count_;
    addCell(object ? Kind::OBJECT : Kind::LIST);
    ++cur_;
    if (depth_ == maxDepth_) {
        fail("nesting deeper than " + std::to_string(maxDepth_) + " levels");
    }
    skipWhiteSpace();
    if (have(close)) {
        noteEnd(cell(index));
        return false;
    }
    levels_[depth_++] = {index, object};
    key_ = keySize_ = 0;
    if (object) key();
    return true;
}

bool Parser::nextValue() {
    for (;;) {
        skipWhiteSpace();
        if (depth_ == 0) {
            if (cur_ != end_) fail("garbage after data");
            return false;
        }
        const Level& level = levels_[depth_ - 1];
        if (have(',')) {
            key_ = keySize_ = 0;
            if (level.object) key();
            return true;
        }
        if (level.object) {
            expect('}', "expected '}' or ','");
        } else {
            expect(']', "expected ']' or ','");
        }
        Cell& closed = cell(level.cell);
        closed.span = (count_ - level.cell) & MAX_SPAN;
        noteEnd(closed);
        --depth_;
    }
}

// The decoded text never gets longer, so it is written over the text already read.
char* Parser::specialCharacters(char* out) {
    for (;;) {
        if (cur_ == end_) fail("unterminated string");
        if (*cur_ == '"') return out;
        if (*cur_ == '\\') {
            out = escape(out);
        } else {
            out = multiByte(out);
        }
        char* const plain = cur_;
        cur_ = findSpecial(cur_, end_);
        const auto length = static_cast<std::size_t>(cur_ - plain);
        if (out != plain) std::memmove(out, plain, length);
        out += length;
    }
}

// Boost checks lead and trail bytes only: overlong forms and surrogates pass.
char* Parser::multiByte(char* out) {
    const auto lead = static_cast<unsigned char>(*cur_);
    if (lead < 0xC0 || lead >= 0xF8) fail("invalid code sequence");
    *out++ = *cur_++;
    for (int trailing = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3; trailing > 0; --trailing) {
        if (cur_ == end_ || (static_cast<unsigned char>(*cur_) & 0xC0U) != 0x80) {
            fail("invalid code sequence");
        }
        *out++ = *cur_++;
    }
    return out;
}

char* Parser::escape(char* out) {
    ++cur_;
    if (have('u')) return codepointReference(out);
    const char plain = cur_ == end_ ? '\0' : escapedCharacter(*cur_);
    if (plain == 0) fail("invalid escape sequence");
    ++cur_;
    *out++ = plain;
    return out;
}

char* Parser::codepointReference(char* out) {
    unsigned code = hexQuad();
    if ((code & 0xFC00U) == 0xDC00) fail("invalid codepoint, stray low surrogate");
    if ((code & 0xFC00U) == 0xD800) {
        expect('\\', "invalid codepoint, stray high surrogate");
        expect('u', "expected codepoint reference after high surrogate");
        const unsigned low = hexQuad();
        if ((low & 0xFC00U) != 0xDC00) fail("expected low surrogate after high surrogate");
        code = 0x10000U + (((code & 0x3FFU) << 10) | (low & 0x3FFU));
    }
    return putCodepoint(out, code);
}

unsigned Parser::hexQuad() {
    unsigned code = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = cur_ == end_ ? -1 : hexDigit(*cur_);
        if (digit < 0) fail("invalid escape sequence");
        code = code * 16 + static_cast<unsigned>(digit);
        ++cur_;
    }
    return code;
}

void Parser::word(Cell& cell, const char* rest, const char* message) {
    const char* const begin = cur_++;
    for (; *rest != '\0'; ++rest) expect(*rest, message);
    cell.data = static_cast<std::uint32_t>(begin - text_);
    cell.dataSize = static_cast<std::uint32_t>(cur_ - begin);
}

void Parser::number(Cell& cell) {
    const char* const begin = cur_;
    const bool minus = have('-');
    if (!have('0')) {
        if (cur_ == end_ || !isDigit(*cur_)) {
            fail(minus ? "expected digits after -" : "expected value");
        }
        digits("");
    }
    if (have('.')) digits("need at least one digit after '.'");
    if (have('e') || have('E')) {
        if (!have('+')) have('-');
        digits("need at least one digit in exponent");
    }
    cell.data = static_cast<std::uint32_t>(begin - text_);
    cell.dataSize = static_cast<std::uint32_t>(cur_ - begin);
}

void Parser::digits(const char* message) {
    if (cur_ == end_ || !isDigit(*cur_)) fail(message);
    while (cur_ != end_ && isDigit(*cur_)) ++cur_;
}

}  // namespace mav_platform::json
