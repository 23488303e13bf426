// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwareBusInterface.h"

#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

void HMAVHardwareBusInterface::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("mode", mode_);
    writer.addKey("instRef", instRef_);
    writer.addKey("compRef", compRef_);
    writer.addKey("typeRef", busTypeRef_);
    writer.addKey("interfaceRef", busInterfaceRef_);
    writer.addKey("clockRef", clockRef_);
    writer.addKey("resetRef", resetRef_);
    writer.addKey("memPort", memPort_);
    writer.addKey("spTag", spTag_);
    writer.addKey("slr", slr_);
    writer.addKey("memoryInstance", memoryInstance_);
    writer.addKey("dataWidth", dataWidth_);
    writer.addKey("numIdBits", numIdBits_);
    writer.addKey("addressSegment", addressSegment_);
    writer.addKey("direction", direction_);
    writer.addKey("isrId", isrId_);
    writer.addKey("category", category_);
    writeList(writer, "addressSegments", addressSegments_);
}
