// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

class HMAVPlatform;

namespace mav_platform {

/// Why a platform has no whole document although it loads: an array-engine project that cannot be
/// read. Empty when nothing is in the way.
MAV_API std::string partitionsFault(const HMAVPlatform& platform);

}  // namespace mav_platform
