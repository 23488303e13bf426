// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "mav_platform/PlatformCheck.h"

namespace cli {

/// What a check found, and what it looked at.
struct Checked {
    HSTVector<mav_platform::CheckFinding> findings;
    std::vector<std::string> files;  ///< in the order in which they were looked at
};

/// The number of findings, with those that are not told one by one.
std::size_t count(const Checked& checked, mav_platform::CheckFinding::Severity severity);

/// SARIF 2.1.0, the static analysis results interchange format of OASIS: columns in code units of
/// UTF-16, members of archives as nested artifacts.
std::string sarif(const Checked& checked);

/// A JUnit report: a suite for each file, in it a case for each rule that found something, which
/// fails when a finding is at least that serious; a case that passes where none fails.
std::string junit(const Checked& checked, mav_platform::CheckFinding::Severity failOn);

/// The line of the finding with a caret below the place, each with an end of line; empty without a
/// source.
std::string context(const mav_platform::CheckFinding& finding);

}  // namespace cli
