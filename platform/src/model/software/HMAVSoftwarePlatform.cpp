// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVSoftwarePlatform.h"

#include "mav_platform/JSONObjectWriter.h"

HMAVSoftwarePlatform::HMAVSoftwarePlatform() = default;

HMAVSoftwarePlatform::~HMAVSoftwarePlatform() = default;

void HMAVSoftwarePlatform::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("linuxRootFileSystemPath", linuxRootFileSystemPath_);
    writer.addKey("defaultConfig", defaultConfigName_);
}
