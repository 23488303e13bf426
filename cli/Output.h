// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "mav_host/Printable.h"

namespace cli {

/// Standard output has no reader any more. Ends the command without a word.
class NoReader {};

/// A signal ended the command, which has put everything in order. Ends it without a word.
struct Interrupted {
    int signal;
};
/// What the exit code of such a command begins at.
constexpr int KILLED_BY = 128;

/// Opens the standard streams that the caller closed, so that no file of ours takes their place.
/// A replaced standard output refuses what is written.
void holdStandardStreams();

/// Writes the whole text to standard output. Throws NoReader for a closed pipe, Failure with the
/// system's reason for anything else.
void writeAnswer(std::string_view text);

/// Writes an answer that is data, such as a JSON text: as it stands, but each line printable where
/// standard output is a terminal. Throws as writeAnswer does.
void writeData(std::string_view text);

/// An answer that goes out piece by piece, so that a long one is never whole in memory and a reader
/// that has gone ends it early. What `end` was not called for may be missing.
class LongAnswer {
  public:
    /// Appends to the answer. Throws as writeAnswer does.
    LongAnswer& operator+=(std::string_view text);
    /// Writes what is left. Throws as writeAnswer does.
    void end();

  private:
    std::string waiting_;
};

/// Writes "mav: ", the sentence and a line end to standard error.
void complain(std::string_view sentence);

/// The pieces in one text.
template <class... Pieces>
std::string text(const Pieces&... pieces) {
    std::string made;
    (made.append(pieces), ...);
    return made;
}

using mav_host::printable;
using mav_host::printableLines;

/// A foreign name where it is told over and over: no more of it than what tells it apart.
std::string brief(std::string_view name);

/// A character of UTF-8 text. A byte that is none, or no printable one, counts as one column.
struct Character {
    std::size_t bytes;
    std::size_t columns;  ///< of a terminal: 2 for wide characters, 0 for combining marks
};

/// The character that the text, which is not empty, begins with.
Character firstCharacter(std::string_view text);

/// Columns of a terminal that the text takes.
std::size_t columns(std::string_view text);

/// The first characters of the text, no more than that many columns.
std::string_view shortened(std::string_view text, std::size_t columns);

/// An exception's text in the midst of a sentence: printable, without a full stop at the end.
std::string clause(std::string_view text);

/// An exception's text as whole sentences: a text that tells itself what to do, behind a semicolon,
/// stands alone; otherwise `advice` follows.
std::string withAdvice(std::string_view text, std::string_view advice);

}  // namespace cli
