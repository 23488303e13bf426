// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

class HMAVHardwarePlatform;

namespace mav_platform {

/// The member's name inside an archive of the platform: below "hw_emu/" for a child
/// hardware-emulation platform.
std::string memberOf(const HMAVHardwarePlatform& platform, const std::string& member);

/// Extracts one member to the file `destinationPath`. False when the archive does not open or has
/// no such member; throws as HUTZip::extractAs does for all else.
bool extractMember(const std::string& archive, const std::string& member,
                   const std::string& destinationPath);

}  // namespace mav_platform
