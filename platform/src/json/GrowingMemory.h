// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <utility>

namespace mav_platform::json {

/// Raw memory that grows. Small blocks come from the heap. Large ones are pages of their own, huge
/// ones where the system has them: they have room to grow into that costs nothing until it is
/// touched, and move without being copied.
class GrowingMemory {
  public:
    GrowingMemory() = default;
    GrowingMemory(GrowingMemory&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    GrowingMemory& operator=(GrowingMemory&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(capacity_, other.capacity_);
        return *this;
    }
    ~GrowingMemory() { release(); }

    /// Null until the first growth.
    char* data() const { return data_; }
    std::size_t capacity() const { return capacity_; }

    /// Makes the capacity at least `needed`, at least doubling it; the content is kept. Throws
    /// std::bad_alloc and leaves everything as it was.
    void grow(std::size_t needed);
    /// Gives all memory back.
    void release() noexcept;

    /// Copies the first `size` bytes to `out` and gives the pages back while going, so that a large
    /// content is never held twice. The content is lost.
    void drainTo(char* out, std::size_t size) noexcept;

  private:
    static constexpr std::size_t PAGED_FROM = std::size_t{1} << 18;
    bool paged() const { return capacity_ >= PAGED_FROM; }
    void growHeap(std::size_t size);
    void growPages(std::size_t size);

    char* data_ = nullptr;
    std::size_t capacity_ = 0;
};

}  // namespace mav_platform::json
