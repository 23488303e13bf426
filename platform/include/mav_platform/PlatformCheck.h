// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

namespace mav_platform {

/// Something that is not as it should be, or may not be meant, and where.
struct MAV_API CheckFinding {
    enum Severity { ERROR, WARNING, NOTE };

    std::string file;        ///< the path; a member of an archive stands behind it and a "/"
    std::size_t line = 0;    ///< from 1; 0 when the finding is about the file as a whole
    std::size_t column = 0;  ///< in bytes from 1; 0 when only the line is known
    Severity severity = ERROR;
    std::string rule;  ///< name of the rule, see PlatformCheck::rules
    std::string text;  ///< one sentence without a full stop
    /// When not 0, this one says that so many more of its rule are not shown, and counts for them.
    std::size_t more = 0;
};

/// One thing that a check looks for.
struct MAV_API CheckRule {
    std::string name;
    CheckFinding::Severity severity = CheckFinding::ERROR;
    std::string summary;  ///< one sentence without a full stop
};

/// A deep look at a platform: at every file that it consists of, for all that loading passes over.
class MAV_API PlatformCheck {
  public:
    /// Every finding about the platform file and what it refers to: file by file, by line inside a
    /// file. A file that several others name is looked at once. Of one rule at most 100 in
    /// a file and 1000 in all are told; a last one of that rule and file counts those beyond. Never
    /// throws for a bad file: that is a finding. The library's own reports and
    /// console lines of this call go nowhere.
    /// `onFile` is called with each file before it is looked at; what it throws passes through.
    using OnFile = std::function<void(const std::string& file)>;
    static HSTVector<CheckFinding> run(const std::string& path, const OnFile& onFile = {});
    /// All rules, sorted by name.
    static const HSTVector<CheckRule>& rules();
    /// "error", "warning" or "note".
    static const char* severityText(CheckFinding::Severity severity);
};

}  // namespace mav_platform
