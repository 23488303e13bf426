// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwareAddressSegment.h"

#include "mav_platform/JSONObjectWriter.h"

void HMAVHardwareAddressSegment::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("baseName", baseName_);
    writer.addKey("index", index_);
    writer.addKey("memoryInstance", memoryInstance_);
    writer.addKey("auto", auto_);
    writer.addKey("spTag", spTag_);
    writer.addKey("slr", slr_);
    writer.addKey("maxMasters", maxMasters_);
    writer.addKey("name", name_);
    writer.addKey("instRef", instRef_);
    writer.addKey("region", region_);
    writer.addKey("readBwUsed", readBwUsed_);
    writer.addKey("writeBwUsed", writeBwUsed_);
    writer.addKey("interleave", interleave_);
}
