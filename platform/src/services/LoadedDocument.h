// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "json/Document.h"
#include "mav_platform/PlatformLoader.h"

class HMAVPlatform;

namespace mav::platform {

/// The document of a platform, as text and as a compact document. All throw HEXAlgException "Failed
/// to read platform: " and the reason when there is none, and what the loader throws.
std::string documentTextOf(mav_platform::PlatformLoader* loader);
std::string documentTextOf(const std::string& platformFile);
mav_platform::json::Document documentOf(const HMAVPlatform& platform);
mav_platform::json::Document documentOf(mav_platform::PlatformLoader* loader);
mav_platform::json::Document documentOf(const std::string& platformFile);

}  // namespace mav::platform
