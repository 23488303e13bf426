// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HEXError.h"

namespace mav_host::xml {

/// A document that does not bind: not well-formed, refused by a limit, unreadable, or not of its
/// format. `what()` is one sentence naming the element, attribute and value concerned; it does not
/// repeat the source or the line, which are kept beside it.
class MAV_API BindingError : public HEXDataException {
  public:
    /// What the reader could not do: read the source, take its text for XML, keep within what a
    /// document may cost, or find it to be of the format.
    enum class Kind { Unreadable, Syntax, Limit, Format };

    explicit BindingError(Kind kind, const std::string& text, std::size_t line = 0,
                          std::size_t column = 0);
    ~BindingError() override;

    Kind kind() const { return kind_; }
    /// Line in the document from 1; 0 when the document could not be read at all.
    std::size_t line() const { return line_; }
    /// Column in bytes from 1; 0 when `line()` is 0 or only the line is known.
    std::size_t column() const { return column_; }

  private:
    Kind kind_;
    std::size_t line_;
    std::size_t column_;
};

}  // namespace mav_host::xml
