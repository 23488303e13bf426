// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mav_platform {

/// Patterns for names and folders that a search passes over, with the rules of git's ignore files:
/// one a line, '#' begins a note, '!' takes a name in again, a '/' at the end means folders alone,
/// one elsewhere ties the pattern to the directory; '*', '?', '[a-z]' match within a name, '**' any
/// folders. The last pattern that matches decides.
class IgnoreRules {
  public:
    struct Rule {
        std::vector<std::string> pieces;  ///< of the pattern, between "/"
        bool isAnchored = false;          ///< to the directory
        bool foldersOnly = false;
        bool takesIn = false;
        std::string told;  ///< the pattern and where it stands
    };

    /// Appends the patterns of the text; `origin` tells where they stand, their line is added when
    /// `numbered`.
    void add(std::string_view text, const std::string& origin, bool numbered);
    /// The rule that ignores a path below the directory, or a folder on the way to it; null when
    /// it is taken in.
    const Rule* ignoring(std::string_view path, bool isDir) const;
    bool empty() const { return rules_.empty(); }

  private:
    std::vector<Rule> rules_;
};

/// The name of the file in a searched directory that holds its patterns.
constexpr const char* IGNORE_FILE = ".mavignore";

}  // namespace mav_platform
