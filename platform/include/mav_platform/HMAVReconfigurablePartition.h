// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

class HMAVHardwarePlatform;

/// One reconfigurable partition as a platform description names it. Owned by its platform, which
/// also owns the hardware platforms that are set here.
class MAV_API HMAVReconfigurablePartition : public mav_platform::JSONSerializable {
  public:
    explicit HMAVReconfigurablePartition(unsigned id) : id_(id) {}

    unsigned getID() const { return id_; }
    /// Null until attached.
    HMAVHardwarePlatform* getHardwarePlatform() const { return hardwarePlatform_; }
    void setHardwarePlatform(HMAVHardwarePlatform* platform) { hardwarePlatform_ = platform; }
    HMAVHardwarePlatform* getHardwareEmulationPlatform() const {
        return hardwareEmulationPlatform_;
    }
    void setHardwareEmulationPlatform(HMAVHardwarePlatform* platform) {
        hardwareEmulationPlatform_ = platform;
    }
    std::string getHardwarePlatformFile() const { return hardwarePlatformFile_; }
    void setHardwarePlatformFile(std::string path) { hardwarePlatformFile_ = std::move(path); }
    /// Empty when the description names none.
    std::string getHardwareEmulationPlatformFile() const { return hardwareEmuPlatformFile_; }
    void setHardwareEmuPlatformFile(std::string path) {
        hardwareEmuPlatformFile_ = std::move(path);
    }
    bool hasHardwareEmulationPlatform() const { return hardwareEmulationPlatform_ != nullptr; }
    /// True when the description names an emulation archive.
    bool hasDistinctHardwareEmulationPlatform() const { return !hardwareEmuPlatformFile_.empty(); }

    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    unsigned id_;
    HMAVHardwarePlatform* hardwarePlatform_ = nullptr;
    HMAVHardwarePlatform* hardwareEmulationPlatform_ = nullptr;
    std::string hardwarePlatformFile_;
    std::string hardwareEmuPlatformFile_;
};
