// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/JSONWriter.h"

namespace mav_platform {

class JSONObjectWriter;

/// Appends unnamed items: the elements of a JSON array. Empty texts, empty sub-writers and null
/// objects are skipped. Written alone, a list comes out as an object with empty keys.
class MAV_API JSONListWriter : public JSONWriter {
  public:
    JSONListWriter() : JSONWriter(true) {}
    ~JSONListWriter() = default;

    void addItem(std::string_view value) { addText({}, value); }
    void addItem(const std::string& value) { addText({}, value); }
    /// A null text is skipped like an empty one.
    void addItem(const char* value) {
        if (value != nullptr) addText({}, value);
    }
    /// A copy of the other writer's tree.
    void addItem(const JSONWriter& sub) { addWriter({}, sub); }
    /// The object's members; skipped when it writes none.
    void addItem(const JSONSerializable* object) { addObjectAt({}, object); }
    /// "true" or "false".
    template <std::same_as<bool> Bool>
    void addItem(Bool value) {
        addText({}, value ? "true" : "false");
    }
    /// Other pointers would convert to something else.
    template <class Other>
    requires(!std::derived_from<Other, JSONSerializable> &&
             !std::same_as<std::remove_cv_t<Other>, char>) void addItem(Other* value) = delete;

    /// Appends an object or a list that `fill` writes through the JSONObjectWriter& or
    /// JSONListWriter& handed to it; rules as JSONObjectWriter::addObject, whose header is needed.
    template <class Fill>
    void addObject(Fill&& fill);
    template <class Fill>
    void addList(Fill&& fill) {
        addFilled<JSONListWriter>({}, std::forward<Fill>(fill));
    }

  private:
    friend class JSONWriter;
    JSONListWriter(JSONWriter& parent, std::string_view key) : JSONWriter(parent, key, true) {}
};

}  // namespace mav_platform
