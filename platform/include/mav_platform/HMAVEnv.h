// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

/// What the library knows of the tool that it runs in.
class MAV_API HMAVEnv {
  public:
    HMAVEnv() = delete;

    /// The variable GRADLE_UNIT_TEST is set; asked of the environment once.
    static bool isRunningAsGradleUnitTest();
    /// The name set with HUTEnv::setProductName; while none is set, the first of "mirra", "mav",
    /// "pellux", "quorin" that occurs in the application root, in any letter case, else "unknown".
    /// The root is looked at once.
    static std::string getProductName();
};
