// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// The identity numbers of one reconfigurable partition, or of the design itself. All start as 0.
class MAV_API HMAVReconfigPartition : public mav_platform::JSONSerializable {
  public:
    unsigned getDesignID() const { return designID_; }
    void setDesignID(unsigned value) { designID_ = value; }
    unsigned getParentID() const { return parentID_; }
    void setParentID(unsigned value) { parentID_ = value; }
    unsigned getNodeID() const { return nodeID_; }
    void setNodeID(unsigned value) { nodeID_ = value; }
    unsigned getFunctionID() const { return functionID_; }
    void setFunctionID(unsigned value) { functionID_ = value; }
    unsigned getDPEPlInterfaceID() const { return dpePlInterfaceID_; }
    void setDPEPlInterfaceID(unsigned value) { dpePlInterfaceID_ = value; }
    unsigned getDPENodeID() const { return dpeNodeID_; }
    void setDPENodeID(unsigned value) { dpeNodeID_ = value; }
    unsigned getDPEUniqueID() const { return dpeUniqueID_; }
    void setDPEUniqueID(unsigned value) { dpeUniqueID_ = value; }
    unsigned getDPEPuID() const { return dpePuID_; }
    void setDPEPuID(unsigned value) { dpePuID_ = value; }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    unsigned designID_ = 0;
    unsigned parentID_ = 0;
    unsigned nodeID_ = 0;
    unsigned functionID_ = 0;
    unsigned dpePlInterfaceID_ = 0;
    unsigned dpeNodeID_ = 0;
    unsigned dpeUniqueID_ = 0;
    unsigned dpePuID_ = 0;
};
