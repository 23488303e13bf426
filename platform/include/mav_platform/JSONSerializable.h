// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

namespace mav_platform {

class JSONObjectWriter;

/// Every object that can write itself as JSON.
class MAV_API JSONSerializable {
  public:
    /// Adds the object's own members to `writer`. It opens no object of its own: the caller decides
    /// whether the members land at top level or under a key.
    virtual void toJSON(JSONObjectWriter& writer) const = 0;
    virtual ~JSONSerializable();

    /// The object as pretty JSON text, written alone.
    std::string toJSONString() const;

  protected:
    JSONSerializable() = default;
    JSONSerializable(const JSONSerializable&) = default;
    JSONSerializable& operator=(const JSONSerializable&) = default;
};

}  // namespace mav_platform
