// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/JSONWriter.h"

namespace mav_platform {

/// Adds members by key. A key is a path: "a.b" is the member b inside the member a. Empty texts,
/// empty sub-writers and null objects are skipped. A scalar replaces the value of a member that is
/// there already, in its place; sub-writers, trees and objects always add one more member.
class MAV_API JSONObjectWriter : public JSONWriter {
  public:
    JSONObjectWriter() : JSONWriter(false) {}
    ~JSONObjectWriter() = default;

    void addKey(std::string_view key, std::string_view value) { addText(key, value); }
    void addKey(std::string_view key, const std::string& value) { addText(key, value); }
    /// A null text is skipped like an empty one.
    void addKey(std::string_view key, const char* value) {
        if (value != nullptr) addText(key, value);
    }
    /// Always writes: "true" or "false".
    void addKey(std::string_view key, bool value) { addText(key, value ? "true" : "false"); }
    /// Always writes: the decimal, "0" included.
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) void addKey(std::string_view key, Number value) {
        if constexpr (std::is_signed_v<Number>) {
            addSigned(key, value);
        } else {
            addUnsigned(key, value);
        }
    }
    /// A list of the texts that are not empty.
    void addKey(std::string_view key, const HSTVector<std::string>& values) {
        addTexts(key, values);
    }
    /// A copy of the other writer's tree.
    void addKey(std::string_view key, const JSONWriter& sub) { addWriter(key, sub); }
    /// A copy of the tree; skipped when it has no children.
    void addKey(std::string_view key, const ptree& sub) { addTree(key, sub); }
    /// The object's members; skipped when it writes none.
    void addKey(std::string_view key, const JSONSerializable* object) { addObjectAt(key, object); }
    /// Other pointers would convert to bool.
    template <class Other>
    requires(!std::derived_from<Other, JSONSerializable> &&
             !std::same_as<std::remove_cv_t<Other>, char>) void addKey(std::string_view key,
                                                                       Other* value) = delete;
    /// So would these.
    template <class Other>
    requires(std::is_enum_v<Other> || std::floating_point<Other>) void addKey(std::string_view key,
                                                                              Other value) = delete;

    /// A text member whose key is taken as it stands, dots included; skipped when it is empty. Does
    /// not look for a member of that name: always adds one.
    void addLiteral(std::string_view key, std::string_view value) { addLiteralText(key, value); }

    /// Merges the object's members into this writer at the current level. Null: nothing.
    void writeObject(const JSONSerializable* object);
    void writeObject(const JSONSerializable& object);

    /// Adds a list or an object that `fill` writes through the JSONListWriter& or JSONObjectWriter&
    /// handed to it; skipped when it writes nothing. Takes the key as it stands, dots included.
    /// What this writer itself takes meanwhile comes before it. An exception of `fill` passes and
    /// leaves no trace here.
    template <class Fill>
    void addList(std::string_view key, Fill&& fill) {
        addFilled<JSONListWriter>(key, std::forward<Fill>(fill));
    }
    template <class Fill>
    void addObject(std::string_view key, Fill&& fill) {
        addFilled<JSONObjectWriter>(key, std::forward<Fill>(fill));
    }

  private:
    friend class JSONWriter;
    friend class JSONListWriter;
    JSONObjectWriter(JSONWriter& parent, std::string_view key) : JSONWriter(parent, key, false) {}
    void addSigned(std::string_view key, std::int64_t value);
    void addUnsigned(std::string_view key, std::uint64_t value);
};

template <class Fill>
void JSONListWriter::addObject(Fill&& fill) {
    addFilled<JSONObjectWriter>({}, std::forward<Fill>(fill));
}

}  // namespace mav_platform
