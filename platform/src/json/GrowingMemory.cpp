// SPDX-License-Identifier: Apache-2.0
#include "json/GrowingMemory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace mav_platform::json {

namespace {

constexpr std::size_t SMALLEST = 256;
constexpr std::size_t PAGE = 4096;

char* mapPages(std::size_t size) {
    void* pages = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    return static_cast<char*>(pages);
}

}  // namespace

void GrowingMemory::grow(std::size_t needed) {
    if (needed <= capacity_) return;
    if (needed > SIZE_MAX / 4) throw std::bad_alloc();
    std::size_t size = std::max({needed, capacity_ * 2, SMALLEST});
    if (size < PAGED_FROM) {
        void* moved = std::realloc(data_, size);
        if (moved == nullptr) throw std::bad_alloc();
        data_ = static_cast<char*>(moved);
    } else {
        size = (size + PAGE - 1) / PAGE * PAGE;
        if (paged()) {
            void* moved = mremap(data_, capacity_, size, MREMAP_MAYMOVE);
            if (moved == MAP_FAILED) throw std::bad_alloc();
            data_ = static_cast<char*>(moved);
        } else {
            char* pages = mapPages(size);
            if (data_ != nullptr) std::memcpy(pages, data_, capacity_);
            std::free(data_);
            data_ = pages;
        }
    }
    capacity_ = size;
}

void GrowingMemory::release() noexcept {
    if (paged()) {
        munmap(data_, capacity_);
    } else {
        std::free(data_);
    }
    data_ = nullptr;
    capacity_ = 0;
}

void GrowingMemory::drainTo(char* out, std::size_t size) noexcept {
    constexpr std::size_t STEP = PAGE * 128;
    for (std::size_t done = 0; done < size; done += STEP) {
        const std::size_t part = std::min(STEP, size - done);
        std::memcpy(out + done, data_ + done, part);
        if (paged()) madvise(data_ + done, part, MADV_DONTNEED);
    }
    release();
}

}  // namespace mav_platform::json
