// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>

#include "mav_host/Export.h"

namespace mav_platform {

/// A platform file that cannot be turned into a platform; `what()` is the text given at the throw.
/// PlatformLoader::load reports it and answers an empty pointer; the loader's constructor throws
/// it.
class MAV_API PlatformParseException : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    ~PlatformParseException() override;
};

}  // namespace mav_platform
