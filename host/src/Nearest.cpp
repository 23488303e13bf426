// SPDX-License-Identifier: Apache-2.0
#include "mav_host/Nearest.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "mav_host/Letters.h"

namespace mav_host {
namespace {

using Row = std::vector<std::size_t>;

std::string_view bare(std::string_view word) {
    const std::size_t start = word.find_first_not_of('-');
    return start == std::string_view::npos ? std::string_view() : word.substr(start);
}

bool same(char a, char b) {
    return lowerLetter(a) == lowerLetter(b);
}

/// Slips between two words, counting a swap of neighbours as one; capitals are no slip.
std::size_t distance(std::string_view a, std::string_view b) {
    Row before(b.size() + 1), above(b.size() + 1), row(b.size() + 1);
    std::iota(above.begin(), above.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = above[j - 1] + (same(a[i - 1], b[j - 1]) ? 0 : 1);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, change});
            if (i > 1 && j > 1 && same(a[i - 1], b[j - 2]) && same(a[i - 2], b[j - 1]))
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before.swap(above);
        above.swap(row);
    }
    return above[b.size()];
}

}  // namespace

std::string nearest(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t LONGEST = 64;
    const std::string_view typed = bare(word);
    if (typed.size() < 2 || typed.size() > LONGEST) return {};
    std::size_t best = std::max<std::size_t>(1, typed.size() / 3) + 1;
    std::string answer;
    for (const std::string& candidate : candidates) {
        const std::size_t slips = distance(typed, bare(candidate));
        if (slips < best) {
            best = slips;
            answer = candidate;
        }
    }
    return answer;
}

}  // namespace mav_host
