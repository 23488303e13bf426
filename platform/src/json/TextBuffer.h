// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

#include "json/GrowingMemory.h"

namespace mav_platform::json {

/// Text that grows at its end. Writers ask for room, write without further checks, then commit.
class TextBuffer {
  public:
    /// Behind all room that is asked for, this much may be overwritten as well.
    static constexpr std::size_t SLACK = 32;

    std::size_t size() const { return size_; }
    const char* data() const { return memory_.data(); }
    std::string_view view() const { return {memory_.data(), size_}; }

    /// Where the next byte goes, with room for `count` bytes. Throws std::bad_alloc.
    char* room(std::size_t count) {
        const std::size_t needed = size_ + count + SLACK;
        if (needed > memory_.capacity()) memory_.grow(needed);
        return memory_.data() + size_;
    }
    /// Takes over what was written up to `end`.
    void commit(const char* end) { size_ = static_cast<std::size_t>(end - memory_.data()); }
    void truncate(std::size_t size) { size_ = size; }

    /// Copies the text to `out` and leaves the buffer empty and without memory.
    void drainTo(char* out) noexcept {
        memory_.drainTo(out, size_);
        size_ = 0;
    }

  private:
    GrowingMemory memory_;
    std::size_t size_ = 0;
};

}  // namespace mav_platform::json
