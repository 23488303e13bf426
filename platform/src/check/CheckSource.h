// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// Fills `member` of each finding about something inside one of the archives.
void fillMembers(HSTVector<CheckFinding>& findings, const std::set<std::string>& archives);
/// Fills `source`, `sourceColumn` and `column16` of each finding with a line; the files are read
/// again. What cannot be read, or is nested deeper, stays without.
void fillSources(HSTVector<CheckFinding>& findings);

}  // namespace mav_platform::check
