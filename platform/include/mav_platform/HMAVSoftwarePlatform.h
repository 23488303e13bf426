// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// The software side of a platform. Created by HMAVPlatform::createMutableSoftwarePlatform and
/// owned by that platform.
class MAV_API HMAVSoftwarePlatform : public mav_platform::JSONSerializable {
  public:
    HMAVSoftwarePlatform();
    ~HMAVSoftwarePlatform() override;

    const std::string& getLinuxRootFileSystemPath() const { return linuxRootFileSystemPath_; }
    void setLinuxRootFileSystemPath(std::string path) {
        linuxRootFileSystemPath_ = std::move(path);
    }
    const std::string& getDefaultConfigName() const { return defaultConfigName_; }
    void setDefaultConfigName(std::string name) { defaultConfigName_ = std::move(name); }

    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string linuxRootFileSystemPath_;
    std::string defaultConfigName_;
};
