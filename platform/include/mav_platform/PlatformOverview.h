// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/Verdict.h"

namespace mav::platform {

/// What people want to know of one platform, section by section, with numbers and booleans as such.
/// Of a platform with partitions the hardware is that of the default one.
class MAV_API PlatformOverview {
  public:
    /// The names of the sections, in their order.
    static const HSTVector<std::string>& sections();
    /// The answer of `mav show`: "file" as it was named, "name" and a member for each section.
    /// Those that are not wanted are null (none wanted: all are there), and so are those about
    /// hardware that the platform does not have. `verdict` is that of the support policy; without
    /// it the section is null. Throws HEXError for an array-engine project that cannot be read.
    static mav_platform::JSONValue answer(mav_platform::PlatformLoader& loader,
                                          const std::string& file,
                                          const HSTVector<std::string>& wanted,
                                          const Verdict* verdict);
};

}  // namespace mav::platform
