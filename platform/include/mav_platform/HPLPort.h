// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A port of a core. Texts are kept as written.
class MAV_API HPLPort : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    const std::string& getMode() const { return mode_; }
    void setMode(std::string value) { mode_ = std::move(value); }
    const std::string& getBase() const { return base_; }
    void setBase(std::string value) { base_ = std::move(value); }
    const std::string& getRange() const { return range_; }
    void setRange(std::string value) { range_ = std::move(value); }
    const std::string& getDataWidth() const { return dataWidth_; }
    void setDataWidth(std::string value) { dataWidth_ = std::move(value); }
    const std::string& getProtocol() const { return protocol_; }
    void setProtocol(std::string value) { protocol_ = std::move(value); }
    const std::string& getIdWidth() const { return idWidth_; }
    void setIdWidth(std::string value) { idWidth_ = std::move(value); }
    const std::string& getAddrWidth() const { return addrWidth_; }
    void setAddrWidth(std::string value) { addrWidth_ = std::move(value); }
    const std::string& getUserWidth() const { return userWidth_; }
    void setUserWidth(std::string value) { userWidth_ = std::move(value); }
    const std::string& getAddrOffset() const { return addrOffset_; }
    void setAddrOffset(std::string value) { addrOffset_ = std::move(value); }
    const std::string& getAddrRange() const { return addrRange_; }
    void setAddrRange(std::string value) { addrRange_ = std::move(value); }
    const std::string& getMaxBurstLength() const { return maxBurstLength_; }
    void setMaxBurstLength(std::string value) { maxBurstLength_ = std::move(value); }
    const std::string& getFrequency() const { return frequency_; }
    void setFrequency(std::string value) { frequency_ = std::move(value); }
    const std::string& getPolarity() const { return polarity_; }
    void setPolarity(std::string value) { polarity_ = std::move(value); }
    const std::string& getDirection() const { return direction_; }
    void setDirection(std::string value) { direction_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string type_;
    std::string mode_;
    std::string base_;
    std::string range_;
    std::string dataWidth_;
    std::string protocol_;
    std::string idWidth_;
    std::string addrWidth_;
    std::string userWidth_;
    std::string addrOffset_;
    std::string addrRange_;
    std::string maxBurstLength_;
    std::string frequency_;
    std::string polarity_;
    std::string direction_;
};
