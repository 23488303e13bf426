// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <string_view>

#include "json/TextBuffer.h"

namespace mav_platform::json {

/// Eight bytes at a time; equal keys have equal hashes.
inline std::uint64_t hashKey(std::string_view key) {
    constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15;
    const char* cur = key.data();
    std::size_t left = key.size();
    std::uint64_t hash = left * FACTOR;
    const auto take = [&](std::uint64_t word) {
        hash = (hash ^ word) * FACTOR;
        hash ^= hash >> 29;
    };
    for (; left >= 8; cur += 8, left -= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, cur, 8);
        take(word);
    }
    if (left >= 4) {
        std::uint32_t head = 0;
        std::uint32_t tail = 0;
        std::memcpy(&head, cur, 4);
        std::memcpy(&tail, cur + left - 4, 4);
        take(head | std::uint64_t{tail} << 32);
    } else if (left > 0) {
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < left; ++i) {
            word = word << 8 | static_cast<unsigned char>(cur[i]);
        }
        take(word);
    }
    return hash * FACTOR;
}

/// False for the keys that only a tree can hold as members: paths of several parts, and the empty
/// one.
inline bool isPlainKey(std::string_view key) {
    if (key.empty()) return false;
    constexpr std::uint64_t ONES = 0x0101010101010101;
    const char* cur = key.data();
    std::size_t left = key.size();
    for (; left >= 8; cur += 8, left -= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, cur, 8);
        word ^= ONES * '.';
        if (((word - ONES) & ~word & (ONES << 7)) != 0) return false;
    }
    for (; left > 0; --left) {
        if (*cur++ == '.') return false;
    }
    return true;
}

/// Where a key stands, escaped, in a text.
struct KeyPlace {
    std::uint64_t hash = 0;
    std::size_t offset = 0;
    std::size_t size = 0;
};

inline bool sameKey(const TextBuffer& text, const KeyPlace& a, const KeyPlace& b) {
    return a.hash == b.hash && a.size == b.size &&
           std::memcmp(text.data() + a.offset, text.data() + b.offset, a.size) == 0;
}

/// The keys of one large level in an order of their own, so that no choice of keys makes a search
/// slow.
class KeySet {
  public:
    /// `places` are the keys of the level so far; those that are new since the last call are taken
    /// in.
    bool holds(const KeyPlace& place, const TextBuffer& text, const KeyPlace* places,
               std::size_t count) {
        if (!places_) places_.emplace(Less{&text});
        for (; entered_ < count; ++entered_) places_->insert(places[entered_]);
        return places_->count(place) != 0;
    }
    void clear() noexcept {
        places_.reset();
        entered_ = 0;
    }

  private:
    struct Less {
        const TextBuffer* text;
        bool operator()(const KeyPlace& a, const KeyPlace& b) const {
            if (a.hash != b.hash) return a.hash < b.hash;
            if (a.size != b.size) return a.size < b.size;
            return std::memcmp(text->data() + a.offset, text->data() + b.offset, a.size) < 0;
        }
    };
    std::optional<std::set<KeyPlace, Less>> places_;
    std::size_t entered_ = 0;
};

}  // namespace mav_platform::json
