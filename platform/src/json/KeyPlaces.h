// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "json/ShortText.h"
#include "json/TextBuffer.h"
#include "mav_host/HI18N.h"

namespace mav_platform::json {

/// What one look at a key tells.
struct KeyLook {
    std::uint64_t hash;  ///< equal keys have equal hashes; of long keys only both ends count
    bool utf8;           ///< it can be written as it stands
    bool plain;          ///< so, and neither empty nor a path of several parts
};

constexpr std::uint64_t HIGH_BITS = 0x8080808080808080;

inline bool hasDot(std::uint64_t bytes) {
    constexpr std::uint64_t ONES = 0x0101010101010101;
    bytes ^= ONES * '.';
    return ((bytes - ONES) & ~bytes & (ONES << 7)) != 0;
}

inline KeyLook lookAtKey(std::string_view key) {
    constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15;
    const char* const text = key.data();
    const std::size_t size = key.size();
    const auto [head, tail] = endsOf(key);
    bool dot = hasDot(head) || hasDot(tail);
    std::uint64_t all = head | tail;
    for (std::size_t at = 8; at + 8 < size; at += 8) {
        const auto word = loadWord<std::uint64_t>(text + at);
        dot = dot || hasDot(word);
        all |= word;
    }
    std::uint64_t hash = (head ^ size) * FACTOR;
    hash = (hash ^ hash >> 32 ^ tail) * FACTOR;
    const bool utf8 = (all & HIGH_BITS) == 0 || HI18N_isUTF8(key);
    return {hash, utf8, utf8 && size != 0 && !dot};
}

/// True for a text that can be written as it stands.
inline bool isUtf8(std::string_view text) {
    const auto [head, tail] = endsOf(text);
    std::uint64_t all = head | tail;
    for (std::size_t at = 8; at + 8 < text.size(); at += 8) {
        all |= loadWord<std::uint64_t>(text.data() + at);
    }
    return (all & HIGH_BITS) == 0 || HI18N_isUTF8(text);
}

/// Where a key stands, escaped, in a text.
struct KeyPlace {
    std::uint64_t hash = 0;
    std::size_t offset = 0;
    std::size_t size = 0;
};

/// The keys of the open levels, the innermost last. Room for one more is made first; nothing can
/// fail after that.
class KeyStack {
  public:
    std::size_t size() const { return size_; }
    const KeyPlace* data() const { return keys_.data(); }
    const KeyPlace& back() const { return keys_[size_ - 1]; }

    /// Throws std::bad_alloc.
    void makeRoom() {
        if (size_ == room_) grow();
    }
    void push(const KeyPlace& place) noexcept { keys_[size_++] = place; }
    void cut(std::size_t size) noexcept { size_ = size; }

  private:
    void grow() {
        keys_.resize(size_ == 0 ? 64 : size_ * 2);
        room_ = keys_.size();
    }
    std::vector<KeyPlace> keys_;
    std::size_t size_ = 0;
    std::size_t room_ = 0;
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
