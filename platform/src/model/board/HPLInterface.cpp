// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLInterface.h"

#include "mav_platform/JSONObjectWriter.h"

void HPLInterface::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("id", id_);
    writer.addKey("name", name_);
    writer.addKey("type", type_);
}
