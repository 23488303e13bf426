// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "mav_host/Export.h"

namespace mav_host {

/// A foreign text as it may go to a terminal, on one line: control characters and bytes that are no
/// UTF-8 as \xNN, the controls from U+0080 on, line and paragraph separators and the marks that
/// turn the direction of writing as \uNNNN. A text that is printable already stays as it is.
MAV_API std::string printable(std::string_view text);

/// Each line of the text as `printable` shows it; the line ends stay.
MAV_API std::string printableLines(std::string_view text);

/// This thread's stream to standard error whose lines go out printable, whole ones or what there is
/// when it is flushed.
MAV_API std::ostream& printableErrors();

/// Standard output and standard error as the library writes to them: lines go out printable where
/// they come to a terminal, and as they stand elsewhere. The streams belong to the calling thread.
MAV_API std::ostream& shownOutput();
MAV_API std::ostream& shownErrors();

/// The beginning of the text, of at most so many bytes; no character of UTF-8 is cut in two.
MAV_API std::string_view beginning(std::string_view text, std::size_t bytes);

}  // namespace mav_host
