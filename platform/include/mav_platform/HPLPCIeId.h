// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// How the board names itself on the PCIe bus.
class MAV_API HPLPCIeId : public mav_platform::JSONSerializable {
  public:
    const std::string& getVendor() const { return vendor_; }
    void setVendor(std::string value) { vendor_ = std::move(value); }
    const std::string& getDevice() const { return device_; }
    void setDevice(std::string value) { device_ = std::move(value); }
    const std::string& getSubsystem() const { return subsystem_; }
    void setSubsystem(std::string value) { subsystem_ = std::move(value); }
    const std::string& getFeatureId() const { return featureId_; }
    void setFeatureId(std::string value) { featureId_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string vendor_;
    std::string device_;
    std::string subsystem_;
    std::string featureId_;
};
