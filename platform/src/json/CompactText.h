// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <exception>
#include <string_view>

#include "json/Document.h"
#include "json/GrowingMemory.h"

namespace mav_platform::json {

/// Thrown by a writer of a compact document for what would need a property tree.
class NotCompact : public std::exception {};

/// The cells of a compact document that a writer fills: in its text stand keys and values alone,
/// one behind the other and as they are.
class CellList {
  public:
    /// The data stand behind the key. Throws NotCompact when there would be more than a document
    /// may have.
    std::uint32_t add(Kind kind, std::uint32_t key, std::uint32_t keySize, std::uint32_t dataSize) {
        if ((std::size_t{count_} + 1) * sizeof(Cell) > memory_.capacity()) grow();
        Cell& cell = data()[count_];
        cell.key = key;
        cell.keySize = keySize;
        cell.data = key + keySize;
        cell.dataSize = dataSize;
        cell.span = 1;
        cell.kind = kind;
        return count_++;
    }
    /// The cells from this one on are below it.
    void close(std::uint32_t index) { data()[index].span = (count_ - index) & MAX_SPAN; }
    void truncate(std::uint32_t count) noexcept { count_ = count; }
    GrowingMemory take() { return std::move(memory_); }

  private:
    static constexpr std::uint32_t MAX_SPAN = (std::uint32_t{1} << 30) - 1;

    Cell* data() { return static_cast<Cell*>(static_cast<void*>(memory_.data())); }
    void grow() {
        if (count_ >= Document::MAX_VALUES) throw NotCompact();
        memory_.grow((std::size_t{count_} + 1) * sizeof(Cell));
    }

    GrowingMemory memory_;
    std::uint32_t count_ = 0;
};

}  // namespace mav_platform::json
