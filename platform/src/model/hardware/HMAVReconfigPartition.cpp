// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVReconfigPartition.h"

#include "mav_platform/JSONObjectWriter.h"

void HMAVReconfigPartition::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("designID", designID_);
    writer.addKey("parentID", parentID_);
    writer.addKey("nodeID", nodeID_);
    writer.addObject("dpengineIDs", [this](mav_platform::JSONObjectWriter& ids) {
        ids.addKey("plInterfaceID", dpePlInterfaceID_);
        ids.addKey("nodeID", dpeNodeID_);
        ids.addKey("uniqueID", dpeUniqueID_);
        ids.addKey("puID", dpePuID_);
    });
    writer.addKey("functionID", functionID_);
}
