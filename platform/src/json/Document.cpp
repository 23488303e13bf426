// SPDX-License-Identifier: Apache-2.0
#include "json/Document.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <limits>
#include <utility>

#include "json/scan.h"

namespace mav_platform::json {
namespace {

using boost::property_tree::ptree;
using Cell = Document::Cell;

/// Parses a text in place. Cells are appended as nodes begin; a container's `end` is set when it
/// closes.
class Parser {
  public:
    Parser(std::string& text, std::vector<Cell>& cells, bool foreign)
        : begin_(text.data()),
          at_(begin_),
          end_(begin_ + text.size()),
          cells_(cells),
          foreign_(foreign) {}

    void parse() {
        skipIntroduction();
        Span key;
        for (;;) {
            if (beginValue(key)) continue;
            if (!nextValue(key)) break;
        }
        skipBlanks();
        if (at_ != end_) fail("garbage after data");
    }

  private:
    struct Span {
        std::uint32_t at = 0;
        std::uint32_t size = 0;
    };
    struct Open {
        std::uint32_t cell;
        bool isObject;
    };

    [[noreturn]] void fail(const char* message) const {
        throw boost::property_tree::json_parser::json_parser_error(message, "", line_);
    }

    // Boost's reader takes any three bytes that begin with EF for a byte order mark.
    void skipIntroduction() {
        if (at_ == end_ || static_cast<unsigned char>(*at_) != 0xEF) return;
        at_ += std::min<std::ptrdiff_t>(3, end_ - at_);
    }

    void skipBlanks() {
        for (; at_ != end_; ++at_) {
            if (*at_ == ' ') {
                at_ = const_cast<char*>(skipSpaces(at_, end_));
                if (at_ == end_) return;
            }
            if (*at_ == '\n') {
                ++line_;
            } else if (*at_ == ' ' || (*at_ != '\t' && *at_ != '\r')) {
                return;
            }
        }
    }

    bool have(char c) {
        if (at_ == end_ || *at_ != c) return false;
        ++at_;
        return true;
    }

    Span span(const char* first, const char* last) const {
        return {static_cast<std::uint32_t>(first - begin_),
                static_cast<std::uint32_t>(last - first)};
    }

    void addCell(Span key, Span data) {
        const auto next = static_cast<std::uint32_t>(cells_.size() + 1);
        cells_.push_back({key.at, key.size, data.at, data.size, next});
    }

    /// Reads a scalar, or opens a container. True when a container's first value comes next; `key`
    /// is then its key.
    bool beginValue(Span& key) {
        skipBlanks();
        if (at_ == end_) fail("expected value");
        switch (*at_) {
            case '{':
                return open(key, true);
            case '[':
                return open(key, false);
            case '"':
                ++at_;
                addCell(key, readString());
                return false;
            case 't':
                addCell(key, readWord("true", "expected 'true'"));
                return false;
            case 'f':
                addCell(key, readWord("false", "expected 'false'"));
                return false;
            case 'n':
                addCell(key, readWord("null", "expected 'null'"));
                return false;
            default:
                addCell(key, readNumber());
                return false;
        }
    }

    bool open(Span& key, bool isObject) {
        if (foreign_ && open_.size() == Document::MAX_DEPTH) {
            fail("nesting deeper than 512 levels");
        }
        ++at_;
        open_.push_back({static_cast<std::uint32_t>(cells_.size()), isObject});
        addCell(key, Span());
        skipBlanks();
        if (have(isObject ? '}' : ']')) {
            open_.pop_back();
            return false;
        }
        key = isObject ? readKey() : Span();
        return true;
    }

    /// Behind a value: closes the containers that end here. True when another value comes; `key` is
    /// then its key.
    bool nextValue(Span& key) {
        while (!open_.empty()) {
            skipBlanks();
            const bool isObject = open_.back().isObject;
            if (have(',')) {
                if (isObject) skipBlanks();
                key = isObject ? readKey() : Span();
                return true;
            }
            if (!have(isObject ? '}' : ']')) {
                fail(isObject ? "expected '}' or ','" : "expected ']' or ','");
            }
            cells_[open_.back().cell].end = static_cast<std::uint32_t>(cells_.size());
            open_.pop_back();
        }
        return false;
    }

    Span readKey() {
        if (!have('"')) fail("expected key string");
        const Span key = readString();
        skipBlanks();
        if (!have(':')) fail("expected ':'");
        return key;
    }

    Span readWord(std::string_view word, const char* message) {
        const char* const first = at_;
        for (const char c : word) {
            if (!have(c)) fail(message);
        }
        return span(first, at_);
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    bool readDigits() {
        const char* const first = at_;
        while (at_ != end_ && isDigit(*at_)) ++at_;
        return at_ != first;
    }

    Span readNumber() {
        const char* const first = at_;
        const bool negative = have('-');
        if (!have('0') && !readDigits())
            fail(negative ? "expected digits after -" : "expected value");
        if (have('.') && !readDigits()) fail("need at least one digit after '.'");
        if (have('e') || have('E')) {
            if (!have('+')) have('-');
            if (!readDigits()) fail("need at least one digit in exponent");
        }
        return span(first, at_);
    }

    /// The text behind an opening quote. Decoded text is never longer than its source, so it moves
    /// forward over it.
    Span readString() {
        char* const first = at_;
        at_ = const_cast<char*>(findRunEnd(at_, end_));
        char* out = at_;
        for (;;) {
            if (at_ == end_) fail("unterminated string");
            if (*at_ == '"') {
                ++at_;
                return span(first, out);
            }
            if (*at_ == '\\') {
                ++at_;
                out = readEscape(out);
            } else {
                out = readCodepoint(out);
            }
            const char* const run = findRunEnd(at_, end_);
            const auto size = static_cast<std::size_t>(run - at_);
            if (out != at_) std::memmove(out, at_, size);
            out += size;
            at_ += size;
        }
    }

    char* readCodepoint(char* out) {
        const auto lead = static_cast<unsigned char>(*at_);
        int trailing = 0;
        if (foreign_) {
            if (lead < 0xC0 || lead >= 0xF8) fail("invalid code sequence");
            trailing = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        }
        *out++ = *at_++;
        for (; trailing > 0; --trailing) {
            if (at_ == end_ || (static_cast<unsigned char>(*at_) & 0xC0) != 0x80) {
                fail("invalid code sequence");
            }
            *out++ = *at_++;
        }
        return out;
    }

    char* readEscape(char* out) {
        if (at_ == end_) fail("invalid escape sequence");
        const char c = *at_++;
        switch (c) {
            case '"':
            case '\\':
            case '/':
                *out++ = c;
                break;
            case 'b':
                *out++ = '\b';
                break;
            case 'f':
                *out++ = '\f';
                break;
            case 'n':
                *out++ = '\n';
                break;
            case 'r':
                *out++ = '\r';
                break;
            case 't':
                *out++ = '\t';
                break;
            case 'u':
                return encode(out, readCodepointReference());
            default:
                fail("invalid escape sequence");
        }
        return out;
    }

    unsigned readHexQuad() {
        unsigned code = 0;
        for (int i = 0; i < 4; ++i) {
            if (at_ == end_) fail("invalid escape sequence");
            const char c = *at_;
            const int digit = isDigit(c)             ? c - '0'
                              : c >= 'a' && c <= 'f' ? c - 'a' + 10
                              : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                     : -1;
            if (digit < 0) fail("invalid escape sequence");
            code = code * 16 + static_cast<unsigned>(digit);
            ++at_;
        }
        return code;
    }

    unsigned readCodepointReference() {
        const unsigned code = readHexQuad();
        if ((code & 0xFC00) == 0xDC00) fail("invalid codepoint, stray low surrogate");
        if ((code & 0xFC00) != 0xD800) return code;
        if (!have('\\')) fail("invalid codepoint, stray high surrogate");
        if (!have('u')) fail("expected codepoint reference after high surrogate");
        const unsigned low = readHexQuad();
        if ((low & 0xFC00) != 0xDC00) fail("expected low surrogate after high surrogate");
        return 0x10000 + (((code & 0x3FF) << 10) | (low & 0x3FF));
    }

    static char* encode(char* out, unsigned code) {
        const auto put = [&out](unsigned byte) { *out++ = static_cast<char>(byte); };
        if (code <= 0x7F) {
            put(code);
        } else if (code <= 0x7FF) {
            put(0xC0 | (code >> 6));
            put(0x80 | (code & 0x3F));
        } else if (code <= 0xFFFF) {
            put(0xE0 | (code >> 12));
            put(0x80 | ((code >> 6) & 0x3F));
            put(0x80 | (code & 0x3F));
        } else {
            put(0xF0 | (code >> 18));
            put(0x80 | ((code >> 12) & 0x3F));
            put(0x80 | ((code >> 6) & 0x3F));
            put(0x80 | (code & 0x3F));
        }
        return out;
    }

    char* begin_;
    char* at_;
    char* end_;
    std::vector<Cell>& cells_;
    std::vector<Open> open_;
    unsigned long line_ = 1;
    bool foreign_;
};

}  // namespace

Document::Document(std::string text) : Document(std::move(text), Trust::FOREIGN) {}

Document Document::ofOwnText(std::string text) {
    return Document(std::move(text), Trust::OWN);
}

Document::Document(std::string text, Trust trust) : text_(std::move(text)) {
    if (text_.size() >= std::numeric_limits<std::uint32_t>::max()) {
        throw boost::property_tree::json_parser::json_parser_error("text larger than 4 GiB", "", 0);
    }
    constexpr std::size_t USUAL_CELL = 32;
    cells_.reserve(text_.size() / USUAL_CELL + 1);
    Parser(text_, cells_, trust == Trust::FOREIGN).parse();
}

Document::~Document() = default;

ptree Document::tree() const {
    return root().tree();
}

std::optional<Node> Node::find(std::string_view key) const {
    for (const Node& child : *this) {
        if (child.key() == key) return child;
    }
    return std::nullopt;
}

ptree Node::tree() const {
    ptree result{std::string(data())};
    struct Level {
        ptree* tree;
        std::uint32_t end;
    };
    std::vector<Level> open{{&result, cell().end}};
    for (std::uint32_t i = index_ + 1; i < cell().end; ++i) {
        while (open.back().end == i) open.pop_back();
        const Node node(document_, i);
        // An empty tree is put in first and filled in place: property trees are costly to copy.
        auto& child = open.back().tree->push_back({std::string(node.key()), ptree()})->second;
        child.data() = node.data();
        if (node.hasChildren()) open.push_back({&child, node.cell().end});
    }
    return result;
}

}  // namespace mav_platform::json
