// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/Convert.h"
#include "json/Document.h"
#include "json/Kinds.h"

/// Tables that say which key of a metadata object fills what. A table lists the keys of one kind of
/// object in the order in which they take effect, which is not the order of the document.
namespace mav_platform::metadata {

using json::ConversionError;
using json::isNothing;
using json::requireList;
using json::requireObject;
using json::requireText;

/// Where the reader stands in the document. A failure leaves it standing there, so that the report
/// can name the place.
class Trail {
  public:
    void enter(std::string_view key) { steps_.push_back({key, NONE}); }
    void enterItem(std::size_t index) { steps_.push_back({{}, index}); }
    void setItem(std::size_t index) { steps_.back().index = index; }
    void setKey(std::string_view key) { steps_.back().key = key; }
    void leave() { steps_.pop_back(); }
    /// Such as "busInterfaces[3].addressSegments[0].index"; empty at the root.
    std::string text() const;

  private:
    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);
    struct Step {
        std::string_view key;
        std::size_t index;
    };
    std::vector<Step> steps_;
};

/// One key of an object of kind T.
template <class T>
struct Field {
    std::string_view key;
    void (*apply)(T&, const json::Node&, Trail&);
    bool required = false;
};

/// Fills `target` from the members of `object`: each key of the table that is present, in the
/// table's order. Of equal keys the first counts. Throws ConversionError for a missing required
/// key and for a node that is no object.
template <class T, std::size_t N>
void readFields(const Field<T> (&fields)[N], const json::Node& object, T& target, Trail& trail) {
    requireObject(object);
    std::array<std::optional<json::Node>, N> found;
    std::size_t guess = 0;
    for (const json::Node& member : object) {
        const std::string_view key = member.key();
        std::size_t tried = 0;
        // Documents mostly keep one order, so the next key of the table is the best first guess.
        while (tried < N && fields[guess].key != key) {
            guess = guess + 1 == N ? 0 : guess + 1;
            ++tried;
        }
        if (tried == N) continue;
        if (!found[guess]) found[guess] = member;
        guess = guess + 1 == N ? 0 : guess + 1;
    }
    trail.enter({});
    for (std::size_t i = 0; i < N; ++i) {
        trail.setKey(fields[i].key);
        if (found[i]) {
            fields[i].apply(target, *found[i], trail);
        } else if (fields[i].required) {
            throw ConversionError("the required key is missing");
        }
    }
    trail.leave();
}

/// Calls `read(item)` for each item of a list.
template <class Read>
void readItems(const json::Node& list, Trail& trail, Read read) {
    if (!requireList(list)) return;
    trail.enterItem(0);
    std::size_t index = 0;
    for (const json::Node& item : list) {
        trail.setItem(index++);
        read(item);
    }
    trail.leave();
}

// Readers for table entries: each converts the value and hands it to the setter.

template <auto Setter, class T>
void text(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(std::string(node.data()));
}

template <auto Setter, class T>
void boolean(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(json::toBool(node.data()));
}

template <auto Setter, class T>
void integer(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(json::toInt(node.data(), 0));
}

template <auto Setter, class T>
void unsignedNumber(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(json::toUnsigned(node.data(), 0));
}

/// As `integer`, for numbers that the model holds unsigned.
template <auto Setter, class T>
void unsignedFromInt(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(static_cast<unsigned>(json::toInt(node.data(), 0)));
}

/// As `unsignedNumber`, with all 64 bits.
template <auto Setter, class T>
void unsigned64(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(json::toUnsigned64(node.data(), 0));
}

/// By the signed conversion, for numbers that the model holds unsigned.
template <auto Setter, class T>
void longNumber(T& target, const json::Node& node, Trail&) {
    requireText(node);
    (target.*Setter)(static_cast<unsigned long>(json::toLong(node.data(), 0)));
}

/// A number in decimal or with "0x". Throws ConversionError for any other text; empty is 0.
unsigned long long decimalOrHex(const json::Node& node);

template <auto Setter, class T>
void address(T& target, const json::Node& node, Trail&) {
    (target.*Setter)(decimalOrHex(node));
}

/// A list of texts, each handed to `Add`.
template <auto Add, class T>
void texts(T& target, const json::Node& node, Trail& trail) {
    readItems(node, trail, [&](const json::Node& item) {
        requireText(item);
        (target.*Add)(std::string(item.data()));
    });
}

/// A list of objects, each read by `Read(target, item, trail)`.
template <auto Read, class T>
void items(T& target, const json::Node& node, Trail& trail) {
    readItems(node, trail, [&](const json::Node& item) { Read(target, item, trail); });
}

/// An object, read by `Read(target, object, trail)` when it has members.
template <auto Read, class T>
void object(T& target, const json::Node& node, Trail& trail) {
    if (requireObject(node)) Read(target, node, trail);
}

}  // namespace mav_platform::metadata
