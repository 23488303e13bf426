// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONObjectWriter.h"

#include <array>
#include <charconv>

namespace mav_platform {

namespace {

/// Room for every 64-bit decimal with its sign.
using Decimal = std::array<char, 24>;

template <class Number>
std::string_view decimal(Decimal& room, Number value) {
    char* const end = std::to_chars(room.data(), room.data() + room.size(), value).ptr;
    return {room.data(), static_cast<std::size_t>(end - room.data())};
}

}  // namespace

void JSONObjectWriter::addSigned(std::string_view key, std::int64_t value) {
    Decimal room;
    addText(key, decimal(room, value));
}

void JSONObjectWriter::addUnsigned(std::string_view key, std::uint64_t value) {
    Decimal room;
    addText(key, decimal(room, value));
}

void JSONObjectWriter::writeObject(const JSONSerializable* object) {
    if (object != nullptr) object->toJSON(*this);
}

void JSONObjectWriter::writeObject(const JSONSerializable& object) {
    object.toJSON(*this);
}

}  // namespace mav_platform
