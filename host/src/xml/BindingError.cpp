// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xml/BindingError.h"

namespace mav_host::xml {

BindingError::BindingError(const std::string& text, std::size_t line, std::size_t column)
    : HEXDataException(text), line_(line), column_(column) {}

BindingError::~BindingError() = default;

}  // namespace mav_host::xml
