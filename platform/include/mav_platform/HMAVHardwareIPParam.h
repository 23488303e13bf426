// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A parameter of an IP of the platform. Created and owned by the hardware platform.
class MAV_API HMAVHardwareIPParam : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getValue() const { return value_; }
    void setValue(std::string value) { value_ = std::move(value); }
    const std::string& getValid() const { return valid_; }
    void setValid(std::string value) { valid_ = std::move(value); }
    const std::string& getCompRef() const { return compRef_; }
    void setCompRef(std::string value) { compRef_ = std::move(value); }
    const std::string& getInstRef() const { return instRef_; }
    void setInstRef(std::string value) { instRef_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string value_;
    std::string valid_;
    std::string compRef_;
    std::string instRef_;
};
