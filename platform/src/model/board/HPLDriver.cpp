// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLDriver.h"

#include "mav_platform/JSONObjectWriter.h"

void HPLDriver::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
}
