// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLBoard.h"

#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

HPLPCIeId& HPLBoard::createPCIeId() {
    if (!pcieId_) pcieId_ = std::make_unique<HPLPCIeId>();
    return *pcieId_;
}

void HPLBoard::DimmConnector::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("displayName", displayName_);
    writer.addKey("type", type_);
    writer.addKey("connectedName", connectedName_);
    writer.addKey("connectedDisplayName", connectedDisplayName_);
    writer.addKey("connected", connected_);
    writer.addKey("locked", locked_);
}

void HPLBoard::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("vendor", vendor_);
    writer.addKey("part", part_);
    writer.addKey("boardPart", boardPart_);
    writer.addKey("imageFileHdpi", imageFileHdpi_);
    writer.addKey("imageFileMdpi", imageFileMdpi_);
    writer.addKey("imageFileLdpi", imageFileLdpi_);
    writeList(writer, "connectors", connectors_);
    writeList(writer, "drivers", drivers_);
    writer.addKey("pcie", pcieId_.get());
}
