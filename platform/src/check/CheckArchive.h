// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// The archive with its metadata, the documents that the metadata lists, the merged emulation
/// platform and the digest.
void checkArchive(const std::string& path, Report& report);

}  // namespace mav_platform::check
