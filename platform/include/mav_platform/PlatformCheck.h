// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
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
    std::string member{};  ///< what `file` names inside an archive; empty for a file of its own
    /// With CheckOptions::sources: the line, UTF-8, of a long one what stands around the place.
    std::string source{};
    std::size_t sourceColumn = 0;  ///< the place in `source`, in bytes from 1; 0 without one
    std::size_t column16 = 0;      ///< the column in code units of UTF-16; 0 without a source
};

/// One thing that a check looks for.
struct MAV_API CheckRule {
    std::string name;
    CheckFinding::Severity severity = CheckFinding::ERROR;
    std::string summary;  ///< one sentence without a full stop
};

/// What a check is to tell, and how seriously.
struct MAV_API CheckOptions {
    /// The severity of a rule's findings; without one they are not told. The last about a rule
    /// counts.
    struct Level {
        std::string rule;
        std::optional<CheckFinding::Severity> severity;
    };

    HSTVector<Level> levels;
    /// File of exceptions (docs/formats/mavcheck.md); when empty, the file ".mavcheck" beside each
    /// platform is taken if there is one.
    std::string exceptions;
    CheckFinding::Severity least = CheckFinding::NOTE;  ///< nothing less serious is told
    bool sources = false;                               ///< findings carry the line they are about
    /// Called with each file before it is looked at; what it throws passes through.
    std::function<void(const std::string& file)> onFile;
};

/// A deep look at a platform: at every file that it consists of, for all that loading passes over.
class MAV_API PlatformCheck {
  public:
    using OnFile = std::function<void(const std::string& file)>;
    using OnFindings = std::function<void(const HSTVector<CheckFinding>& findings)>;

    /// Every finding about the platform file and what it refers to: file by file, by line inside a
    /// file. A file that several others name is looked at once. Of one rule at most 100 in
    /// a file and 1000 in all are told; a last one of that rule and file counts those beyond. Never
    /// throws for a bad file: that is a finding. The library's own reports and
    /// console lines of this call go nowhere.
    /// `onFile` is as in CheckOptions.
    static HSTVector<CheckFinding> run(const std::string& path, const OnFile& onFile = {});
    /// The findings about each of the platforms, handed out platform by platform, those about the
    /// exceptions last; of a directory about all descriptions, then about all archives and software
    /// platforms below it that none of them names. No file is looked at twice. False when none of
    /// the paths can be read, so that nothing could be judged. Throws HEXUserException for a level
    /// of an unknown rule and for exceptions that cannot be read, and what `onFindings` throws.
    static bool run(const HSTVector<std::string>& paths, const CheckOptions& options,
                    const OnFindings& onFindings);
    /// All rules, sorted by name.
    static const HSTVector<CheckRule>& rules();
    /// "error", "warning" or "note".
    static const char* severityText(CheckFinding::Severity severity);
    /// The severity of that text; nothing for "off". Throws HEXUserException for another one.
    static std::optional<CheckFinding::Severity> severityOf(const std::string& text);
};

}  // namespace mav_platform
