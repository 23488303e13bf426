// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "json/Document.h"

namespace mav_platform::json {

/// One run over a text: fills the cells and decodes strings in place. Grammar, leniencies and error
/// texts are those of Boost.PropertyTree's reader; see docs/json.md.
class Parser {
  public:
    /// `maxDepth` is at most Document::MAX_OWN_DEPTH.
    Parser(char* text, std::size_t size, std::string_view fileName, GrowingMemory& cells,
           unsigned maxDepth)
        : text_(text),
          cur_(text),
          end_(text + size),
          fileName_(fileName),
          cells_(cells),
          maxDepth_(maxDepth) {}

    /// Throws json_parser_error at the first fault; the cells are then of no use.
    void run();

  private:
    struct Level {
        std::uint32_t cell;
        bool object;
    };

    [[noreturn]] void fail(const std::string& message) const;
    bool have(char c) {
        if (cur_ == end_ || *cur_ != c) return false;
        ++cur_;
        return true;
    }
    void expect(char c, const char* message) {
        if (!have(c)) fail(message);
    }
    void skipWhiteSpace() {
        if (cur_ != end_ && static_cast<unsigned char>(*cur_) > ' ') return;
        // One space between tokens is the most that dense text has.
        if (end_ - cur_ > 1 && *cur_ == ' ' && static_cast<unsigned char>(cur_[1]) > ' ') {
            ++cur_;
            return;
        }
        skipWhiteSpaceRun();
    }
    void skipWhiteSpaceRun();
    void skipByteOrderMark();
    Cell& cell(std::uint32_t index) { return data()[index]; }
    Cell* data() { return static_cast<Cell*>(static_cast<void*>(cells_.data())); }
    Cell& addCell(Kind kind);
    void growCells();
    /// Notes the place of a closing bracket that was just read.
    void noteEnd(Cell& cell) { cell.data = static_cast<std::uint32_t>(cur_ - text_ - 1); }

    /// Reads the start of a value; true when the next thing is another value below it.
    bool value();
    bool open(bool object, char close);
    /// Behind a value: closes what ends here; false when the whole text is read.
    bool nextValue();
    void key();
    void string(std::uint32_t& offset, std::uint32_t& size);
    char* specialCharacters(char* out);
    char* multiByte(char* out);
    char* escape(char* out);
    char* codepointReference(char* out);
    unsigned hexQuad();
    void word(Cell& cell, const char* rest, const char* message);
    void number(Cell& cell);
    void digits(const char* message);

    char* text_;
    char* cur_;
    char* end_;
    std::string_view fileName_;
    GrowingMemory& cells_;
    std::uint32_t count_ = 0;
    std::uint32_t room_ = 0;
    unsigned maxDepth_;
    unsigned depth_ = 0;
    unsigned long line_ = 1;
    std::uint32_t key_ = 0;
    std::uint32_t keySize_ = 0;
    std::array<Level, Document::MAX_OWN_DEPTH> levels_;
};

}  // namespace mav_platform::json
