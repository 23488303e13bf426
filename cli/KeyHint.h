// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_platform/PlatformLoader.h"

namespace cli {

/// " Did you mean 'NAME'?" for the first name in a path that no key of the platform has; empty when
/// all are known or none is near.
std::string keyHint(mav_platform::PlatformLoader& loader, const std::string& path);

}  // namespace cli
