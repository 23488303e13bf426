// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mav_host/Nearest.h"

namespace cli {

using mav_host::nearest;

/// " Did you mean 'WORD'?" for the word that was meant; empty without one.
std::string didYouMean(std::string_view meant);

/// The sentence about a word that is none of the known ones, as in "unknown shell 'bahs': use bash,
/// zsh or fish. Did you mean 'bash'?"; `listed` says whether it names them.
std::string refusal(const std::string& kind, const std::string& word,
                    const std::vector<std::string>& known, bool listed = false);

}  // namespace cli
