// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A clock that the platform offers to kernels. Created and owned by the hardware platform.
class MAV_API HMAVSystemClock : public mav_platform::JSONSerializable {
  public:
    /// Name as the platform exposes it.
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    /// Name in the hardware design.
    const std::string& getOrigName() const { return origName_; }
    void setOrigName(std::string value) { origName_ = std::move(value); }
    /// Kept as written.
    const std::string& getFrequency() const { return frequency_; }
    void setFrequency(std::string value) { frequency_ = std::move(value); }
    const std::string& getInstRef() const { return instRef_; }
    void setInstRef(std::string value) { instRef_ = std::move(value); }
    const std::string& getCompRef() const { return compRef_; }
    void setCompRef(std::string value) { compRef_ = std::move(value); }
    const std::string& getPeriod() const { return period_; }
    void setPeriod(std::string value) { period_ = std::move(value); }
    const std::string& getNormalizedPeriod() const { return normalizedPeriod_; }
    void setNormalizedPeriod(std::string value) { normalizedPeriod_ = std::move(value); }
    /// "fixed", "scalable" or "changeable".
    const std::string& getStatus() const { return status_; }
    void setStatus(std::string value) { status_ = std::move(value); }
    /// The platform's default clock id refers to it.
    unsigned getId() const { return id_; }
    void setId(unsigned value) { id_ = value; }
    bool isFixed() const;
    /// True for "scalable" and for "changeable".
    bool isScalable() const;
    /// "PL " and the id where the metadata names one; never written to JSON.
    const std::string& getDisplayName() const { return displayName_; }
    void setDisplayName(std::string value) { displayName_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string origName_;
    std::string frequency_;
    std::string instRef_;
    std::string compRef_;
    std::string period_;
    std::string normalizedPeriod_;
    std::string status_;
    unsigned id_ = 0;
    std::string displayName_;
};
