// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDesignIntentStorage.h"

#include "mav_platform/JSONObjectWriter.h"

void HMAVDesignIntentStorage::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("dataCenter", dataCenter_.value);
    writer.addKey("embedded", embedded_.value);
    writer.addKey("externalHost", externalHost_.value);
    writer.addKey("serverManaged", serverManaged_.value);
}
