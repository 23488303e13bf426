// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// The text of a software platform file by itself.
void checkSoftware(std::string_view text, const std::string& path, Report& report);

}  // namespace mav_platform::check
