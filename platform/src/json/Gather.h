// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "json/Document.h"

namespace mav_platform::json {

/// The children named in a table, one slot per name, found in one walk; of equal keys the first
/// wins, an absent one leaves its slot empty. Fastest when the object keeps the table's order.
template <std::size_t N>
std::array<std::optional<Node>, N> gather(const Node& object,
                                          const std::array<std::string_view, N>& names) {
    std::array<std::optional<Node>, N> found;
    std::size_t guess = 0;
    for (const Node& child : object) {
        const std::string_view key = child.key();
        for (std::size_t tried = 0; tried < N; ++tried) {
            const std::size_t slot = guess + tried < N ? guess + tried : guess + tried - N;
            if (names[slot] != key) continue;
            if (!found[slot]) found[slot] = child;
            guess = slot + 1 < N ? slot + 1 : 0;
            break;
        }
    }
    return found;
}

/// The data of a slot; empty for an empty slot.
inline std::string_view dataOf(const std::optional<Node>& slot) {
    return slot ? slot->data() : std::string_view();
}

}  // namespace mav_platform::json
