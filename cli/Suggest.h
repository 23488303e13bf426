// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// The candidate nearest to a mistyped word, leading dashes left aside; empty when none is near: at
/// most one slip (a letter added, lost, changed, or two swapped) for every three letters typed, one
/// slip at least. Of equally near candidates the first wins.
std::string nearest(std::string_view word, const std::vector<std::string>& candidates);

/// " Did you mean 'WORD'?" for the word that was meant; empty without one.
std::string didYouMean(std::string_view meant);

/// The sentence about a word that is none of the known ones, as in "unknown shell 'bahs': use bash,
/// zsh or fish. Did you mean 'bash'?"; `listed` says whether it names them.
std::string refusal(const std::string& kind, const std::string& word,
                    const std::vector<std::string>& known, bool listed = false);

}  // namespace cli
