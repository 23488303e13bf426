// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "mav_host/HSTVector.h"
#include "mav_platform/JSONWriter.h"

namespace mav_platform {

/// Adds members by key. A key is a property-tree path: one that holds a "." creates or walks nested
/// objects, so "a.b" adds member b inside member a. Members keep the order in which they were first
/// added.
class MAV_API JSONObjectWriter : public JSONWriter {
  public:
    JSONObjectWriter();
    ~JSONObjectWriter();

    /// Skipped when the value is empty. Replaces the value of a member that is there already, in
    /// its place.
    void addKey(std::string_view key, std::string_view value);
    void addKey(std::string_view key, const std::string& value);
    void addKey(std::string_view key, const char* value);
    /// Always written, as "true" or "false"; replaces.
    template <std::same_as<bool> Bool>
    void addKey(std::string_view key, Bool value) {
        addKey(key, std::string_view(value ? "true" : "false"));
    }
    /// Always written, in decimal; replaces.
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) void addKey(std::string_view key, Number value) {
        if constexpr (std::is_signed_v<Number>) {
            addSigned_(key, value);
        } else {
            addUnsigned_(key, value);
        }
    }
    /// A list of the non-empty texts; nothing when there are none. Appends.
    void addKey(std::string_view key, const HSTVector<std::string>& values);
    /// A copy of the other writer's tree; skipped when that is empty. Appends: a second call with
    /// the same key makes a second member of that name.
    void addKey(std::string_view key, const JSONWriter& sub);
    /// The same for a tree; skipped when it has no children.
    void addKey(std::string_view key, const ptree& sub);
    /// What the object writes, under a key of its own; skipped for null and for an object that
    /// writes nothing. Appends.
    void addKey(std::string_view key, const JSONSerializable* object);

    /// Adds the object's members to this writer at the current level; nothing for null.
    void writeObject(const JSONSerializable* object);
    void writeObject(const JSONSerializable& object);

    /// A member that `fill` writes, given the JSONObjectWriter or JSONListWriter to fill; skipped
    /// when it writes nothing. Appends, and takes the key as it stands, dots included.
    template <class Fill>
    void addObject(std::string_view key, Fill&& fill) {
        addObject_(key, {[](void* function, JSONObjectWriter& writer) {
                             (*static_cast<std::remove_reference_t<Fill>*>(function))(writer);
                         },
                         &fill});
    }
    template <class Fill>
    void addList(std::string_view key, Fill&& fill) {
        addList_(key, {[](void* function, JSONListWriter& writer) {
                           (*static_cast<std::remove_reference_t<Fill>*>(function))(writer);
                       },
                       &fill});
    }
    /// A text member whose key is taken as it stands, dots included; skipped when it is empty.
    /// Appends.
    void addLiteral(std::string_view key, std::string_view value);

  private:
    friend class JSONWriter;
    explicit JSONObjectWriter(JSONWriter& parent);
    void addSigned_(std::string_view key, long long value);
    void addUnsigned_(std::string_view key, unsigned long long value);
    void addObject_(std::string_view key, FillCall<JSONObjectWriter> fill);
    void addList_(std::string_view key, FillCall<JSONListWriter> fill);
};

}  // namespace mav_platform
