// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace mav_platform::check {

/// A pattern of a schema: a regular expression of ECMAScript. Those between "^" and "$" that are
/// made of characters, brackets, groups and counts alone are matched in one run over the pattern,
/// with all places of a text of at most 63 bytes at once; other patterns and texts by std::regex.
class Pattern {
  public:
    /// Throws std::regex_error for what is no pattern, at the latest when it matches.
    explicit Pattern(std::string_view text);

    /// The text holds a match.
    bool matches(std::string_view text);

  private:
    bool scan();

    std::string text_;
    std::string inner_;               ///< between "^" and "$"
    std::vector<std::size_t> close_;  ///< the end of the group or bracket at each place, else 0
    bool simple_ = false;
    std::unique_ptr<std::regex> compiled_;  ///< made when it is first needed
};

}  // namespace mav_platform::check
