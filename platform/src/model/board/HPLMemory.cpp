// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLMemory.h"

#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

void HPLMemory::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
    writer.addKey("size", size_);
    writePairs(writer, "configParams", configParams_);
    writer.addKey("lowAddress", lowAddress_);
    writer.addKey("highAddress", highAddress_);
}
