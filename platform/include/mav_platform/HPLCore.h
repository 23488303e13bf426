// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HPLPort.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/OwnedList.h"

/// The reconfigurable core of a device. Counts are texts, kept as written.
class MAV_API HPLCore : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    const std::string& getInstPath() const { return instPath_; }
    void setInstPath(std::string value) { instPath_ = std::move(value); }
    const std::string& getSourceViewInstPath() const { return sourceViewInstPath_; }
    void setSourceViewInstPath(std::string value) { sourceViewInstPath_ = std::move(value); }
    const std::string& getParentRMInstPath() const { return parentRMInstPath_; }
    void setParentRMInstPath(std::string value) { parentRMInstPath_ = std::move(value); }
    const std::string& getReconfigModuleName() const { return reconfigModuleName_; }
    void setReconfigModuleName(std::string value) { reconfigModuleName_ = std::move(value); }
    const std::string& getDrBDName() const { return drBDName_; }
    void setDrBDName(std::string value) { drBDName_ = std::move(value); }
    const std::string& getVlnv() const { return vlnv_; }
    void setVlnv(std::string value) { vlnv_ = std::move(value); }
    const std::string& getClockFreq() const { return clockFreq_; }
    void setClockFreq(std::string value) { clockFreq_ = std::move(value); }
    const std::string& getBramCount() const { return bramCount_; }
    void setBramCount(std::string value) { bramCount_ = std::move(value); }
    const std::string& getDspCount() const { return dspCount_; }
    void setDspCount(std::string value) { dspCount_ = std::move(value); }
    const std::string& getLutCount() const { return lutCount_; }
    void setLutCount(std::string value) { lutCount_ = std::move(value); }
    const std::string& getUramCount() const { return uramCount_; }
    void setUramCount(std::string value) { uramCount_ = std::move(value); }
    const std::string& getRegisterCount() const { return registerCount_; }
    void setRegisterCount(std::string value) { registerCount_ = std::move(value); }
    unsigned getNumComputeUnits() const { return numComputeUnits_; }
    void setNumComputeUnits(unsigned value) { numComputeUnits_ = value; }
    /// A placement block with its resources.
    class MAV_API PBlock : public mav_platform::JSONSerializable {
      public:
        const std::string& getName() const { return name_; }
        void setName(std::string value) { name_ = std::move(value); }
        void addResource(std::string name, std::string value) {
            resources_.emplace_back(std::move(name), std::move(value));
        }
        const HSTVector<std::pair<std::string, std::string>>& getResources() const {
            return resources_;
        }
        void toJSON(mav_platform::JSONObjectWriter& writer) const override;

      private:
        std::string name_;
        HSTVector<std::pair<std::string, std::string>> resources_;
    };

    void addValidSlr(std::string name) { validSlrs_.push_back(std::move(name)); }
    const HSTVector<std::string>& getValidSlrs() const { return validSlrs_; }
    void addAvailableResource(std::string name, std::string value) {
        availableResources_.emplace_back(std::move(name), std::move(value));
    }
    const HSTVector<std::pair<std::string, std::string>>& getAvailableResources() const {
        return availableResources_;
    }
    /// Appends an empty block, owned by this core, and answers it.
    PBlock* addPBlock() { return &pBlocks_.emplace_back(); }
    const std::deque<PBlock>& getPBlocks() const { return pBlocks_; }
    /// Appends an empty port, owned by this core, and answers it.
    HPLPort* addPort() { return ports_.add(); }
    const HSTVector<HPLPort*>& getPorts() const { return ports_.items(); }
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
    std::string instPath_;
    std::string sourceViewInstPath_;
    std::string parentRMInstPath_;
    std::string reconfigModuleName_;
    std::string drBDName_;
    std::string vlnv_;
    std::string clockFreq_;
    std::string bramCount_;
    std::string dspCount_;
    std::string lutCount_;
    std::string uramCount_;
    std::string registerCount_;
    unsigned numComputeUnits_ = 0;
    HSTVector<std::string> validSlrs_;
    HSTVector<std::pair<std::string, std::string>> availableResources_;
    HSTVector<std::pair<std::string, std::string>> configParams_;
    std::deque<PBlock> pBlocks_;
    OwnedList<HPLPort> ports_;
};
