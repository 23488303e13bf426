// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLCore.h"

#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

void HPLCore::PBlock::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writePairs(writer, "resources", resources_);
}

void HPLCore::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
    writer.addKey("instPath", instPath_);
    writer.addKey("sourceViewInstPath", sourceViewInstPath_);
    writer.addKey("parentRMInstPath", parentRMInstPath_);
    writer.addKey("reconfigModuleName", reconfigModuleName_);
    writer.addKey("drBDName", drBDName_);
    writer.addKey("vlnv", vlnv_);
    writer.addKey("clockFreq", clockFreq_);
    writer.addKey("numComputeUnits", numComputeUnits_);
    writer.addKey("bramCount", bramCount_);
    writer.addKey("dspCount", dspCount_);
    writer.addKey("lutCount", lutCount_);
    writer.addKey("uramCount", uramCount_);
    writer.addKey("registerCount", registerCount_);
    writer.addKey("validSlrs", validSlrs_);
    writePairs(writer, "availableResources", availableResources_);
    writer.addList("pBlocks", [this](mav_platform::JSONListWriter& list) {
        for (const PBlock& block : pBlocks_) list.addItem(&block);
    });
    writePairs(writer, "configParams", configParams_);
    writeList(writer, "ports", ports_);
}
