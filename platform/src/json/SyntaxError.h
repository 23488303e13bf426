// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/json_parser/error.hpp>
#include <cstddef>
#include <string>

namespace mav_platform::json {

/// Boost's error with the place to the byte.
class SyntaxError : public boost::property_tree::json_parser::json_parser_error {
  public:
    SyntaxError(const std::string& message, const std::string& fileName, unsigned long line,
                std::size_t offset)
        : json_parser_error(message, fileName, line), offset_(offset) {}
    /// Where the parser stopped, in bytes from the start of the text.
    std::size_t offset() const { return offset_; }

  private:
    std::size_t offset_;
};

}  // namespace mav_platform::json
