// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVReconfigurablePartition.h"

#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/JSONObjectWriter.h"

void HMAVReconfigurablePartition::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("id", id_);
    writer.addKey("hardwarePlatform", hardwarePlatform_);
    if (hasDistinctHardwareEmulationPlatform()) {
        writer.addKey("hwEmuPlatform", hardwareEmulationPlatform_);
    }
}
