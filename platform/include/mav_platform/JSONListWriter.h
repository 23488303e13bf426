// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "mav_platform/JSONWriter.h"

namespace mav_platform {

/// Appends unnamed items. Printed alone, its text is an object with empty keys, as the property
/// tree has no list at its root.
class MAV_API JSONListWriter : public JSONWriter {
  public:
    JSONListWriter();
    ~JSONListWriter();

    /// Skipped when the value is empty.
    void addItem(std::string_view value);
    void addItem(const std::string& value);
    void addItem(const char* value);
    /// "true" or "false".
    template <std::same_as<bool> Bool>
    void addItem(Bool value) {
        addItem(std::string_view(value ? "true" : "false"));
    }
    /// A copy of the other writer's tree; skipped when that is empty.
    void addItem(const JSONWriter& sub);
    /// What the object writes; skipped for null and for an object that writes nothing.
    void addItem(const JSONSerializable* object);

    /// An item that `fill` writes, given the JSONObjectWriter to fill; skipped when it writes
    /// nothing.
    template <class Fill>
    void addObject(Fill&& fill) {
        addObject_({[](void* function, JSONObjectWriter& writer) {
                        (*static_cast<std::remove_reference_t<Fill>*>(function))(writer);
                    },
                    &fill});
    }

  private:
    friend class JSONWriter;
    explicit JSONListWriter(JSONWriter& parent);
    void addObject_(FillCall<JSONObjectWriter> fill);
};

}  // namespace mav_platform
