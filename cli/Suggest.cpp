// SPDX-License-Identifier: Apache-2.0
#include "Suggest.h"

#include "Output.h"

std::string cli::didYouMean(std::string_view meant) {
    return meant.empty() ? "" : " Did you mean '" + printable(meant) + "'?";
}

std::string cli::refusal(const std::string& kind, const std::string& word,
                         const std::vector<std::string>& known, bool listed) {
    std::string text = kind + " '" + printable(word) + "'";
    for (std::size_t i = 0; listed && i < known.size(); ++i) {
        text += (i == 0 ? ": use " : i + 1 < known.size() ? ", " : " or ") + known[i];
    }
    return text + "." + didYouMean(nearest(word, known));
}
