// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/HSTVector.h"

namespace mav_platform {

/// "platforms" and "base_platforms" below each application root, in the host's order, whether they
/// exist or not.
HSTVector<std::string> applicationPlatformDirs();

/// The directory of the whole system: "/opt/tarvek/platforms".
const std::string& systemPlatformDir();

/// The canonical name of each piece between ":" of the text, in order.
HSTVector<std::string> splitToDirs(const std::string& text);

}  // namespace mav_platform
