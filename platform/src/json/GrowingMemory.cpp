// SPDX-License-Identifier: Apache-2.0
#include "json/GrowingMemory.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace mav_platform::json {

namespace {

constexpr std::size_t SMALLEST = 256;
constexpr std::size_t HUGE_PAGE = std::size_t{1} << 21;
/// What a paged block reserves at first.
constexpr std::size_t RESERVED = HUGE_PAGE * 16;

constexpr std::size_t roundUp(std::size_t size) {
    return (size + HUGE_PAGE - 1) / HUGE_PAGE * HUGE_PAGE;
}

/// Asks for huge pages in what lies between their borders. A page fault costs more than the use of
/// the page; one for 2 MiB costs little more than one for 4 KiB.
void preferHugePages(char* from, std::size_t size) {
    const auto address = reinterpret_cast<std::uintptr_t>(from);
    const std::size_t before = roundUp(address) - address;
    if (size < before + HUGE_PAGE) return;
    madvise(from + before, (size - before) / HUGE_PAGE * HUGE_PAGE, MADV_HUGEPAGE);
}

/// Blocks of the size `RESERVED` for the next call, with their first huge page kept: whoever reads
/// one document reads more.
std::array<std::atomic<char*>, 2> spares;

char* takeSpare() {
    for (auto& spare : spares) {
        if (char* const block = spare.exchange(nullptr)) return block;
    }
    return nullptr;
}

bool keepSpare(char* block) {
    for (auto& spare : spares) {
        char* none = nullptr;
        if (spare.compare_exchange_strong(none, block)) return true;
    }
    return false;
}

/// Pages that begin at a huge page's border.
char* reserve(std::size_t size) {
    if (size == RESERVED) {
        if (char* const spare = takeSpare()) return spare;
    }
    void* const found = mmap(nullptr, size + HUGE_PAGE, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (found == MAP_FAILED) throw std::bad_alloc();
    char* const begin = static_cast<char*>(found);
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::size_t before = roundUp(address) - address;
    if (before != 0) munmap(begin, before);
    if (before != HUGE_PAGE) munmap(begin + before + size, HUGE_PAGE - before);
    preferHugePages(begin + before, size);
    return begin + before;
}

}  // namespace

void GrowingMemory::grow(std::size_t needed) {
    if (needed <= capacity_) return;
    if (needed > SIZE_MAX / 8) throw std::bad_alloc();
    const std::size_t size = std::max({needed, capacity_ * 2, SMALLEST});
    if (size < PAGED_FROM) {
        growHeap(size);
    } else {
        growPages(std::max(roundUp(size), RESERVED));
    }
}

void GrowingMemory::growHeap(std::size_t size) {
    void* const moved = std::realloc(data_, size);
    if (moved == nullptr) throw std::bad_alloc();
    data_ = static_cast<char*>(moved);
    capacity_ = size;
}

void GrowingMemory::growPages(std::size_t size) {
    char* const pages = reserve(size);
    if (paged()) {
        // Both places begin at a border, so that huge pages stay whole.
        if (mremap(data_, capacity_, capacity_, MREMAP_MAYMOVE | MREMAP_FIXED, pages) ==
            MAP_FAILED) {
            munmap(pages, size);
            throw std::bad_alloc();
        }
    } else if (data_ != nullptr) {
        std::memcpy(pages, data_, capacity_);
        std::free(data_);
    }
    data_ = pages;
    capacity_ = size;
}

void GrowingMemory::release() noexcept {
    if (!paged()) {
        std::free(data_);
    } else if (capacity_ != RESERVED) {
        munmap(data_, capacity_);
    } else {
        madvise(data_ + HUGE_PAGE, RESERVED - HUGE_PAGE, MADV_DONTNEED);
        if (!keepSpare(data_)) munmap(data_, capacity_);
    }
    data_ = nullptr;
    capacity_ = 0;
}

void GrowingMemory::drainTo(char* out, std::size_t size) noexcept {
    const bool large = paged() && size > HUGE_PAGE;
    if (large) preferHugePages(out, size);
    for (std::size_t done = 0; done < size; done += HUGE_PAGE) {
        const std::size_t part = std::min(HUGE_PAGE, size - done);
        std::memcpy(out + done, data_ + done, part);
        if (large) madvise(data_ + done, HUGE_PAGE, MADV_DONTNEED);
    }
    release();
}

}  // namespace mav_platform::json
