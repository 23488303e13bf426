// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONSerializable.h"

/// A memory of the board.
class MAV_API HPLMemory : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    /// Such as "16 GB", as written.
    const std::string& getSize() const { return size_; }
    void setSize(std::string value) { size_ = std::move(value); }
    unsigned long long getLowAddress() const { return lowAddress_; }
    void setLowAddress(unsigned long long value) { lowAddress_ = value; }
    unsigned long long getHighAddress() const { return highAddress_; }
    void setHighAddress(unsigned long long value) { highAddress_ = value; }
    /// Appends a name and value.
    void addConfigParam(std::string name, std::string value) {
        configParams_.emplace_back(std::move(name), std::move(value));
    }
    const HSTVector<std::pair<std::string, std::string>>& getConfigParams() const {
        return configParams_;
    }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string type_;
    std::string size_;
    unsigned long long lowAddress_ = 0;
    unsigned long long highAddress_ = 0;
    HSTVector<std::pair<std::string, std::string>> configParams_;
};
