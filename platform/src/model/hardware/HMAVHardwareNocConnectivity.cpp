// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwareNocConnectivity.h"

#include "mav_platform/JSONObjectWriter.h"

void HMAVHardwareNocConnectivity::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("instRef", instRef_);
    writer.addKey("busInterfaces", busInterfaces_);
}
