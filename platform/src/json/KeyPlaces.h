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

/// What one look at a key tells.
struct KeyLook {
    std::uint64_t hash;  ///< equal keys have equal hashes; of long keys only both ends count
    bool plain;          ///< neither empty nor a path of several parts
};

inline bool hasDot(std::uint64_t bytes) {
    constexpr std::uint64_t ONES = 0x0101010101010101;
    bytes ^= ONES * '.';
    return ((bytes - ONES) & ~bytes & (ONES << 7)) != 0;
}

template <class Word>
Word loadWord(const char* from) {
    Word word;
    std::memcpy(&word, from, sizeof(word));
    return word;
}

inline KeyLook lookAtKey(std::string_view key) {
    constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15;
    const char* const text = key.data();
    const std::size_t size = key.size();
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    if (size >= 8) {
        head = loadWord<std::uint64_t>(text);
        tail = loadWord<std::uint64_t>(text + size - 8);
    } else if (size >= 4) {
        head = loadWord<std::uint32_t>(text);
        tail = loadWord<std::uint32_t>(text + size - 4);
    } else {
        for (const char c : key) head = head << 8 | static_cast<unsigned char>(c);
    }
    bool dot = hasDot(head) || hasDot(tail);
    for (std::size_t at = 8; at + 8 < size; at += 8) {
        dot = dot || hasDot(loadWord<std::uint64_t>(text + at));
    }
    std::uint64_t hash = (head ^ size) * FACTOR;
    hash = (hash ^ hash >> 32 ^ tail) * FACTOR;
    return {hash, size != 0 && !dot};
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
