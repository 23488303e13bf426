// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "mav_host/Export.h"

namespace mav_host {

/// A foreign text as it may go to a terminal, on one line: control characters and bytes that are no
/// UTF-8 as \xNN, the controls from U+0080 on, line and paragraph separators and the marks that
/// turn the direction of writing as \uNNNN. A text that is printable already stays as it is.
MAV_API std::string printable(std::string_view text);

/// The beginning of the text, of at most so many bytes; no character of UTF-8 is cut in two.
MAV_API std::string_view beginning(std::string_view text, std::size_t bytes);

}  // namespace mav_host
