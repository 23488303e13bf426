// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// An address segment of a bus interface. Created and owned by the bus interface.
class MAV_API HMAVHardwareAddressSegment : public mav_platform::JSONSerializable {
  public:
    const std::string& getBaseName() const { return baseName_; }
    void setBaseName(std::string value) { baseName_ = std::move(value); }
    const std::string& getMemoryInstance() const { return memoryInstance_; }
    void setMemoryInstance(std::string value) { memoryInstance_ = std::move(value); }
    /// "false" keeps the segment from automatic assignment, "preferred" prefers it.
    const std::string& getAuto() const { return auto_; }
    void setAuto(std::string value) { auto_ = std::move(value); }
    const std::string& getSPTag() const { return spTag_; }
    void setSPTag(std::string value) { spTag_ = std::move(value); }
    const std::string& getSLR() const { return slr_; }
    void setSLR(std::string value) { slr_ = std::move(value); }
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getInstRef() const { return instRef_; }
    void setInstRef(std::string value) { instRef_ = std::move(value); }
    const std::string& getRegion() const { return region_; }
    void setRegion(std::string value) { region_ = std::move(value); }
    unsigned getIndex() const { return index_; }
    void setIndex(unsigned value) { index_ = value; }
    unsigned getMaxMasters() const { return maxMasters_; }
    void setMaxMasters(unsigned value) { maxMasters_ = value; }
    unsigned getReadBwUsed() const { return readBwUsed_; }
    void setReadBwUsed(unsigned value) { readBwUsed_ = value; }
    unsigned getWriteBwUsed() const { return writeBwUsed_; }
    void setWriteBwUsed(unsigned value) { writeBwUsed_ = value; }
    unsigned getInterleave() const { return interleave_; }
    void setInterleave(unsigned value) { interleave_ = value; }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string baseName_;
    std::string memoryInstance_;
    std::string auto_;
    std::string spTag_;
    std::string slr_;
    std::string name_;
    std::string instRef_;
    std::string region_;
    unsigned index_ = 0;
    unsigned maxMasters_ = 0;
    unsigned readBwUsed_ = 0;
    unsigned writeBwUsed_ = 0;
    unsigned interleave_ = 0;
};
