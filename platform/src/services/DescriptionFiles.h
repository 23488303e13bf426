// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/HSTVector.h"

namespace mav::platform {

/// The description files (".qpfm") below the directories, which are joined by ":", in the order of
/// the directories and sorted inside each. Links to directories are followed; no directory is
/// walked twice. What is no directory, or cannot be listed, adds nothing.
HSTVector<std::string> descriptionFiles(const std::string& directories);

}  // namespace mav::platform
