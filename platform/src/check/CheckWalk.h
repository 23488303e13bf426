// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>

#include "check/CheckArchive.h"
#include "check/CheckPolicy.h"
#include "check/CheckReport.h"
#include "formats/description/MAVPlatformLMX.h"

namespace mav_platform::check {

/// The path without "." pieces and doubled slashes; ".." stays, for links may lead through it.
std::string tidied(std::string_view path);

/// Follows a platform file to all that it refers to, and looks at each of these files once.
class Walk {
  public:
    /// Files that were looked at: canonical path, path to show.
    using Seen = std::map<std::string, std::string>;

    /// Nothing is owned.
    Walk(Seen& seen, const PlatformCheck::OnFile& onFile, Policy& policy, Report& report)
        : seen_(seen), onFile_(onFile), policy_(policy), report_(report) {}

    /// `path` is how findings call the file.
    void file(const std::string& path);
    /// How findings call the file that the library names by this path.
    std::string shownPath(const std::string& path) const;

  private:
    bool isNew(const std::string& path);
    bool isOtherwiseNamed(const std::string& path);
    std::optional<std::string> read(const std::string& path);
    void description(const std::string& path);
    void software(const std::string& path);
    void partitions(const std::string& path, const lmx::HardwarePlatforms& hardware);
    bool isPartial(const lmx::FileReference& reference) const;
    bool exists(const std::string& path, const lmx::FileReference& reference,
                const std::string& target);
    void archive(const std::string& path, const std::optional<lmx::FileReference>& reference);
    void compare(const lmx::FileReference& reference, const std::string& path,
                 const ArchiveIdentity& identity);

    Seen& seen_;
    const PlatformCheck::OnFile& onFile_;
    Policy& policy_;
    Report& report_;
    /// The document at hand has no fault. What is missing from one that has may be what the fault
    /// concerns, so nothing is said of it.
    bool whole_ = true;
    std::string vendor_, version_;  ///< of the description at hand
};

}  // namespace mav_platform::check
