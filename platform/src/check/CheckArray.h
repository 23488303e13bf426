// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// Findings "array-geometry" about archive metadata: partitions that overlap, sub-partitions
/// outside their parent, rows that overlap, a high address below the base.
void checkArray(const LocatedJson& json, Report& report);
/// The same about the partitions file of an array-engine project, and whether it fits its schema.
void checkArrayProject(std::string text, const std::string& file, Report& report);

}  // namespace mav_platform::check
