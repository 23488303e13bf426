// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "capi/Call.h"
#include "mav_platform/PlatformLoader.h"

struct hmav_platform {
    capi::Listener listener;
    std::string path;
    std::unique_ptr<mav_platform::PlatformLoader> loader;  ///< has loaded
    std::shared_ptr<HMAVPlatform> platform;
};
