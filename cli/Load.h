// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformLoader.h"

namespace cli {

/// A loader that has loaded the platform file. Throws UsageError about `command` for an empty path,
/// Failure when the platform does not load.
std::unique_ptr<mav_platform::PlatformLoader> loadFile(
    const std::string& command, const std::string& file,
    mav_platform::HwMetadataMode mode = mav_platform::PlatformLoader::HW_METADATA_AUTO);

/// Throws UsageError about `command` when the tool release of the environment is none.
void needToolRelease(const std::string& command);

}  // namespace cli
