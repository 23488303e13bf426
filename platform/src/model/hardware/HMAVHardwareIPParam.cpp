// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwareIPParam.h"

#include "mav_platform/JSONObjectWriter.h"

void HMAVHardwareIPParam::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("value", value_);
    writer.addKey("instRef", instRef_);
    writer.addKey("compRef", compRef_);
    writer.addKey("valid", valid_);
}
