// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

using mav_platform::JSONListWriter;
using mav_platform::JSONObjectWriter;

namespace {

void addIfTrue(JSONObjectWriter& writer, const char* key, bool value) {
    if (value) writer.addKey(key, true);
}

}  // namespace

void HMAVHardwarePlatform::toJSON(JSONObjectWriter& writer) const {
    writer.addKey("vendor", getVendor());
    writer.addKey("boardId", getBoardId());
    writer.addKey("name", getName());
    writer.addKey("description", getDescription());
    writer.addKey("detailedDescription", getDetailedDescription());
    writer.addKey("uniqueName", getUniqueName());
    writer.addKey("fpgaPart", getFpgaPart());
    writer.addKey("fpgaDevice", getFpgaDevice());
    writer.addKey("interfaceDescription", getInterfaceDesc());
    writer.addKey("platformFile", platformFile_);
    writeSupport_(writer);
    writeGeneration_(writer);
    writer.addObject("flash", [this](JSONObjectWriter& flash) {
        flash.addKey("interfaceType", flashInterfaceType_);
        flash.addKey("offsetAddress", flashOffsetAddress_);
        flash.addKey("size", flashSize_);
    });
    writer.addKey("designIDs", designIDs_.get());
    writeList(writer, "reconfigPartitionIDs", reconfigPartitions_);
    writer.addKey("dpeHardware", &dpeHardware_);
    writeDpePartitions(writer);
    writeList(writer, "designIpInstances", designIPs_);
    writePairs(writer, "resources", resources_, "type", "count");
    writeClocks_(writer);
    writeList(writer, "ipParameters", ipParams_);
    writeList(writer, "busInterfaces", busInterfaces_);
    writeList(writer, "nocConnectivity", nocConnectivity_);
    writeList(writer, "featureRoms", featureRoms_);
}

void HMAVHardwarePlatform::writeSupport_(JSONObjectWriter& writer) const {
    writer.addKey("unifiedPlatform", unifiedPlatform_);
    writer.addKey("expandablePlatform", expandable_);
    writer.addKey("hardware", supportsHardware_);
    writer.addKey("softwareEmulation", supportsSWEmulation_);
    writer.addKey("hardwareEmulation", supportsHWEmulation_);
    writer.addKey("hardwareEmuPlatform", hwEmuPlatform_);
    addIfTrue(writer, "segmentedConfiguration", supportsSegmentedConfiguration());
    addIfTrue(writer, "dynamicReload", supportsDynamicReload());
    if (expandable_) {
        writer.addKey("maxAXIMMManagers", getMaxAXIMMManagers());
        writer.addKey("maxAXIMMSubordinates", getMaxAXIMMSubordinates());
        writer.addKey("maxInterrupts", getMaxInterrupts());
    }
    writer.addKey("usesNIFD", usesNIFD_);
    addIfTrue(writer, "static", static_);
    addIfTrue(writer, "rm", rm_);
    writer.addKey("drBdInstName", drBdInstName_);
}

void HMAVHardwarePlatform::writeGeneration_(JSONObjectWriter& writer) const {
    writer.addKey("generatedName", generatedName_);
    writer.addKey("generatedVersion", generatedVersion_);
    writer.addKey("generatedChangeList", generatedChangeList_);
    writer.addKey("generatedIpChangeList", generatedIpChangeList_);
    writer.addKey("generatedSharedDataChangeList", generatedSharedDataChangeList_);
    writer.addKey("generatedTimestamp", generatedTimestamp_);
    addIfTrue(writer, "hasExternalSources", hasExternalSources_);
    addIfTrue(writer, "hasVMAContent", hasVMAContent_);
    addIfTrue(writer, "genLink", generatedByLink_);
    addIfTrue(writer, "genSwEmuLink", generatedBySwEmuLink_);
    writer.addKey("idCode", idCode_);
    writer.addKey("extendedIdCode", extendedIdCode_);
}

void HMAVHardwarePlatform::writeDpePartitions(JSONObjectWriter& writer) const {
    const std::list<HMAVDpePartition>& partitions = getDpePartitions();
    writer.addList("dpePartitions", [&partitions](JSONListWriter& list) {
        for (const HMAVDpePartition& partition : partitions) list.addItem(&partition);
    });
}

void HMAVHardwarePlatform::writeClocks_(JSONObjectWriter& writer) const {
    const std::string defaultName = getDefaultClockName();
    writer.addList("systemClocks", [&](JSONListWriter& list) {
        for (const HMAVSystemClock* clock : systemClocks_.items()) {
            list.addObject([&](JSONObjectWriter& object) {
                object.writeObject(clock);
                object.addKey("default", clock->getName() == defaultName);
            });
        }
    });
}
