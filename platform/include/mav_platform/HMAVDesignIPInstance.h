// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONSerializable.h"

/// An IP instance of the platform design. Created and owned by the hardware platform.
class MAV_API HMAVDesignIPInstance : public mav_platform::JSONSerializable {
  public:
    /// vendor:library:name:version of the IP.
    const std::string& getVlnv() const { return vlnv_; }
    void setVlnv(std::string value) { vlnv_ = std::move(value); }
    const std::string& getInstance() const { return instance_; }
    void setInstance(std::string value) { instance_ = std::move(value); }
    /// The third field of the vlnv; empty when there is none.
    std::string getName() const;
    /// Appends a parameter. Throws HEXAlgException "Attempt to readd Design IP Instance Config
    /// Param key: '" + key + "' is not allowed!" for a key that is there already; nothing changes
    /// then.
    void addConfigParam(const std::string& key, std::string value);
    /// Parameters in the order in which they were added.
    const HSTVector<std::pair<std::string, std::string>>& getConfigParams() const {
        return config_;
    }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string vlnv_;
    std::string instance_;
    HSTVector<std::pair<std::string, std::string>> config_;
    std::set<std::string> configKeys_;
};
