// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// Who made a platform, and its version as MAJOR.MINOR.
struct ArchiveIdentity {
    std::string vendor, version;
};

/// The archive with its metadata, the documents that the metadata lists, the merged emulation
/// platform and the digest.
/// Answers what the metadata tells of the platform; empty texts when there is none.
ArchiveIdentity checkArchive(const std::string& path, Report& report);

}  // namespace mav_platform::check
