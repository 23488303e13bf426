// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xml/BindingError.h"

namespace mav_host::xml {

BindingError::BindingError(Kind kind, const std::string& text, std::size_t line, std::size_t column)
    : HEXDataException(text), kind_(kind), line_(line), column_(column) {}

BindingError::~BindingError() = default;

}  // namespace mav_host::xml
