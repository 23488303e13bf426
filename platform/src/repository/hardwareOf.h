// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "mav_platform/HMAVPlatform.h"

namespace mav_platform {

/// The platform's hardware, else that of its default partition, also where the partition alone has
/// it; null when there is none.
inline const HMAVHardwarePlatform* hardwareOf(const HMAVPlatform& platform) {
    const HMAVHardwarePlatform* const own = platform.getHardwarePlatform();
    return own != nullptr ? own : platform.getDefaultRPHardwarePlatform();
}

}  // namespace mav_platform
