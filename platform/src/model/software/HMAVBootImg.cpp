// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVBootImg.h"

#include "mav_platform/JSONObjectWriter.h"

HMAVBootImg::~HMAVBootImg() = default;

void HMAVBootImg::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
    writer.addKey("bif", bif_);
    writer.addKey("data", imgData_);
    writer.addKey("rootFileSystem", rootFS_);
    writer.addKey("bootMode", bootMode_);
    writer.addKey("mountPath", mountPath_);
    writer.addKey("readMe", readMe_);
    writer.addKey("qemuArgs", qemuArgs_);
    writer.addKey("qemuBoot", qemuBoot_);
    writer.addKey("qemuDevTree", qemuDevTree_);
    writer.addKey("hwBootBin", hwBootBin_);
}
