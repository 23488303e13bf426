// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace mav_platform {

/// Extracts one member to the file `destinationPath`. False when the archive does not open or has
/// no such member; throws as HUTZip::extractAs does for all else.
bool extractMember(const std::string& archive, const std::string& member,
                   const std::string& destinationPath);

}  // namespace mav_platform
