// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "check/CheckHpfm.h"
#include "check/CheckReport.h"

namespace mav_platform::check {

/// Findings "dangling-name" about archive metadata: bus interfaces and instances of NoC records,
/// super logic regions that the devices do not have.
void checkNames(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                Report& report);
/// Findings "contradiction" about archive metadata: part, name and version of one thing told in
/// several places.
void checkAgreement(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                    Report& report);
/// VENDOR_BOARD_NAME_MAJOR_MINOR.
std::string platformName(const LocatedJson& json);
/// The same name with "_" for each ":" and ".".
std::string sameName(std::string name);

}  // namespace mav_platform::check
