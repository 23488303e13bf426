// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONSerializable.h"

#include "mav_platform/JSONObjectWriter.h"

namespace mav_platform {

JSONSerializable::~JSONSerializable() = default;

std::string JSONSerializable::toJSONString() const {
    JSONObjectWriter writer;
    toJSON(writer);
    return writer.text();
}

}  // namespace mav_platform
