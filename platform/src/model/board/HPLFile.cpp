// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLFile.h"

#include "mav_platform/JSONObjectWriter.h"

void HPLFile::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
    writer.addKey("usedIn", usedIn_);
    writer.addKey("processingOrder", processingOrder_);
}
