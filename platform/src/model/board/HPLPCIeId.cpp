// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLPCIeId.h"

#include "mav_platform/JSONObjectWriter.h"

void HPLPCIeId::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("vendor", vendor_);
    writer.addKey("device", device_);
    writer.addKey("subsystem", subsystem_);
    writer.addKey("featureId", featureId_);
}
