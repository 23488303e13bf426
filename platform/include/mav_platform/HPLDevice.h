// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/HMAVDevice.h"
#include "mav_platform/HPLCore.h"
#include "mav_platform/JSONSerializable.h"

/// A device of the board. Owns its clocks and its core.
class MAV_API HPLDevice : public HMAVDevice {
  public:
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    const std::string& getFpgaPart() const { return fpgaPart_; }
    void setFpgaPart(std::string value) { fpgaPart_ = std::move(value); }
    unsigned getNumSLRs() const { return numSLRs_; }
    void setNumSLRs(unsigned value) { numSLRs_ = value; }
    const std::string& getName() const override { return name_; }
    void setName(std::string value) { name_ = std::move(value); }

    /// The parts of the device part's name.
    class MAV_API Part : public mav_platform::JSONSerializable {
      public:
        const std::string& getName() const { return name_; }
        void setName(std::string value) { name_ = std::move(value); }
        const std::string& getArchitecture() const { return architecture_; }
        void setArchitecture(std::string value) { architecture_ = std::move(value); }
        const std::string& getDevice() const { return device_; }
        void setDevice(std::string value) { device_ = std::move(value); }
        const std::string& getPackage() const { return package_; }
        void setPackage(std::string value) { package_ = std::move(value); }
        const std::string& getSpeedGrade() const { return speedGrade_; }
        void setSpeedGrade(std::string value) { speedGrade_ = std::move(value); }
        const std::string& getTempGrade() const { return tempGrade_; }
        void setTempGrade(std::string value) { tempGrade_ = std::move(value); }
        const std::string& getStaPower() const { return staPower_; }
        void setStaPower(std::string value) { staPower_ = std::move(value); }
        const std::string& getRevision() const { return revision_; }
        void setRevision(std::string value) { revision_ = std::move(value); }
        void toJSON(mav_platform::JSONObjectWriter& writer) const override;

      private:
        std::string name_;
        std::string architecture_;
        std::string device_;
        std::string package_;
        std::string speedGrade_;
        std::string tempGrade_;
        std::string staPower_;
        std::string revision_;
    };

    /// A clock of the device that can be scaled.
    class MAV_API Clock : public mav_platform::JSONSerializable {
      public:
        const std::string& getName() const { return name_; }
        void setName(std::string value) { name_ = std::move(value); }
        const std::string& getFrequency() const { return frequency_; }
        void setFrequency(std::string value) { frequency_ = std::move(value); }
        void toJSON(mav_platform::JSONObjectWriter& writer) const override;

      private:
        std::string name_;
        std::string frequency_;
    };

    Part& getPart() { return part_; }
    const Part& getPart() const { return part_; }
    /// Appends an empty clock, owned by the device, and answers it.
    Clock* addClock() { return &clocks_.emplace_back(); }
    const std::deque<Clock>& getClocks() const { return clocks_; }
    /// The core, made on first use.
    HPLCore& createCore();
    /// The core; null when there is none.
    const HPLCore* getCore() const { return core_.get(); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string type_;
    std::string fpgaPart_;
    unsigned numSLRs_ = 0;
    std::string name_;
    Part part_;
    std::deque<Clock> clocks_;
    std::unique_ptr<HPLCore> core_;
};
