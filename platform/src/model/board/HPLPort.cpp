// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLPort.h"

#include "mav_platform/JSONObjectWriter.h"

void HPLPort::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
    writer.addKey("mode", mode_);
    writer.addKey("base", base_);
    writer.addKey("range", range_);
    writer.addKey("dataWidth", dataWidth_);
    writer.addKey("protocol", protocol_);
    writer.addKey("idWidth", idWidth_);
    writer.addKey("addrWidth", addrWidth_);
    writer.addKey("userWidth", userWidth_);
    writer.addKey("addrOffset", addrOffset_);
    writer.addKey("addrRange", addrRange_);
    writer.addKey("maxBurstLength", maxBurstLength_);
    writer.addKey("frequency", frequency_);
    writer.addKey("polarity", polarity_);
    writer.addKey("direction", direction_);
}
