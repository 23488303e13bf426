// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/HSTVector.h"
#include "mav_platform/Verdict.h"

namespace mav::platform {

/// ROOT/platforms/achromatic.
std::string supportListPath();

/// The entries of the host's support list, those of the black list first, each list in file order.
/// None when there is no list; none after a report through "@74-49@%s" when the file is no
/// protected container, does not decipher or parse, or is empty, and through "@74-50@%s" when it is
/// malformed.
HSTVector<SupportEntry> readSupportList();

}  // namespace mav::platform
