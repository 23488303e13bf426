// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "check/CheckReport.h"
#include "check/CheckWalk.h"

namespace mav_platform::check {

/// Looks at the platform file with the walk, then loads it: whether it loads after all, what is
/// read only on the first question, the verdict of the policy, and what the library reports of all
/// this and no finding tells.
void checkPlatform(const std::string& path, Walk& walk, Report& report);

}  // namespace mav_platform::check
