// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONSerializable.h"

/// The bus interfaces that one network-on-chip instance connects. Created and owned by the hardware
/// platform.
class MAV_API HMAVHardwareNocConnectivity : public mav_platform::JSONSerializable {
  public:
    const std::string& getInstRef() const { return instRef_; }
    void setInstRef(std::string value) { instRef_ = std::move(value); }
    void addBusInterface(std::string name) { busInterfaces_.push_back(std::move(name)); }
    /// Names in the order in which they were added.
    const HSTVector<std::string>& getBusInterfaces() const { return busInterfaces_; }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string instRef_;
    HSTVector<std::string> busInterfaces_;
};
