// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

namespace mav_platform::detail {

/// Growing text. Large blocks grow by remapping pages, so that growth costs no second copy in
/// memory. Also keeps the key hashes of the open objects, innermost last.
class TextBuffer {
  public:
    TextBuffer() = default;
    ~TextBuffer() { std::free(data_); }
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    const char* data() const { return data_; }
    std::size_t size() const { return size_; }
    std::string_view view(std::size_t from) const { return {data_ + from, size_ - from}; }

    void append(char c) {
        *room(1) = c;
        ++size_;
    }
    void append(std::string_view text) {
        if (text.empty()) return;
        std::memcpy(room(text.size()), text.data(), text.size());
        size_ += text.size();
    }
    void appendBlanks(std::size_t count) {
        std::memset(room(count), ' ', count);
        size_ += count;
    }
    /// The text as JSON writes it between quotes.
    void appendEscaped(std::string_view text);
    /// The quotes, too.
    void appendQuoted(std::string_view text) {
        append('"');
        appendEscaped(text);
        append('"');
    }
    void truncate(std::size_t size) { size_ = size; }

    std::vector<std::uint32_t> keys;

  private:
    /// Room for `more` bytes behind the text.
    char* room(std::size_t more) {
        if (capacity_ - size_ < more) grow(more);
        return data_ + size_;
    }
    void grow(std::size_t more);

    char* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace mav_platform::detail
