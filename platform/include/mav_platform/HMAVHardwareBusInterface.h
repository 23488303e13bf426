// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/HMAVHardwareAddressSegment.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/OwnedList.h"

/// A bus interface of the platform. Created and owned by the hardware platform; owns its address
/// segments.
class MAV_API HMAVHardwareBusInterface : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    /// "master" or "slave" for memory-mapped interfaces.
    const std::string& getMode() const { return mode_; }
    void setMode(std::string value) { mode_ = std::move(value); }
    const std::string& getInstRef() const { return instRef_; }
    void setInstRef(std::string value) { instRef_ = std::move(value); }
    const std::string& getCompRef() const { return compRef_; }
    void setCompRef(std::string value) { compRef_ = std::move(value); }
    /// Such as "aximm" or "interrupt".
    const std::string& getBusTypeRef() const { return busTypeRef_; }
    void setBusTypeRef(std::string value) { busTypeRef_ = std::move(value); }
    const std::string& getBusInterfaceRef() const { return busInterfaceRef_; }
    void setBusInterfaceRef(std::string value) { busInterfaceRef_ = std::move(value); }
    const std::string& getClockRef() const { return clockRef_; }
    void setClockRef(std::string value) { clockRef_ = std::move(value); }
    const std::string& getResetRef() const { return resetRef_; }
    void setResetRef(std::string value) { resetRef_ = std::move(value); }
    /// Such as "memss", "m_axi_gp" or "s_axi_gp".
    const std::string& getMemPort() const { return memPort_; }
    void setMemPort(std::string value) { memPort_ = std::move(value); }
    const std::string& getSPTag() const { return spTag_; }
    void setSPTag(std::string value) { spTag_ = std::move(value); }
    const std::string& getSLR() const { return slr_; }
    void setSLR(std::string value) { slr_ = std::move(value); }
    const std::string& getMemoryInstance() const { return memoryInstance_; }
    void setMemoryInstance(std::string value) { memoryInstance_ = std::move(value); }
    const std::string& getAddressSegment() const { return addressSegment_; }
    void setAddressSegment(std::string value) { addressSegment_ = std::move(value); }
    const std::string& getDirection() const { return direction_; }
    void setDirection(std::string value) { direction_ = std::move(value); }
    /// The interrupt id, as text.
    const std::string& getIsrId() const { return isrId_; }
    void setIsrId(std::string value) { isrId_ = std::move(value); }
    const std::string& getCategory() const { return category_; }
    void setCategory(std::string value) { category_ = std::move(value); }
    /// In bits, as stored; it may be negative.
    int getDataWidth() const { return dataWidth_; }
    void setDataWidth(int value) { dataWidth_ = value; }
    unsigned getNumIdBits() const { return numIdBits_; }
    void setNumIdBits(unsigned value) { numIdBits_ = value; }
    /// Appends an empty segment, owned by this interface, and answers it.
    HMAVHardwareAddressSegment* addAddressSegment() { return addressSegments_.add(); }
    /// The segments in the order in which they were added.
    const HSTVector<HMAVHardwareAddressSegment*>& getAddressSegments() const {
        return addressSegments_.items();
    }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string mode_;
    std::string instRef_;
    std::string compRef_;
    std::string busTypeRef_;
    std::string busInterfaceRef_;
    std::string clockRef_;
    std::string resetRef_;
    std::string memPort_;
    std::string spTag_;
    std::string slr_;
    std::string memoryInstance_;
    std::string addressSegment_;
    std::string direction_;
    std::string isrId_;
    std::string category_;
    unsigned numIdBits_ = 0;
    int dataWidth_ = 0;
    OwnedList<HMAVHardwareAddressSegment> addressSegments_;
};
