// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformOverview.h"

#include <algorithm>
#include <array>

#include "mav_platform/HMAVBootImg.h"
#include "mav_platform/HMAVEmulation.h"
#include "mav_platform/HMAVEmulations.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVProcessorGroup.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSystemConfig.h"
#include "mav_platform/HPLPlatform.h"

namespace mav::platform {

using mav_platform::JSONValue;

namespace {

/// What the sections tell of, found once.
struct Subject {
    const HMAVPlatform& platform;
    const HPLPlatform* hardware;  ///< the own one, else the default partition's; null without
    const Verdict* verdict;       ///< null when it was not asked for
};

JSONValue orNull(const std::string& text) {
    return JSONValue::orNull(text);
}

JSONValue identity(const Subject& subject) {
    const HMAVPlatform& platform = subject.platform;
    const HPLPlatform* const hardware = subject.hardware;
    const std::string& own = platform.getDescription();
    JSONValue made = JSONValue::object();
    made.add("description",
             orNull(own.empty() && hardware != nullptr ? hardware->getDescription() : own))
        .add("type", orNull(platform.getTypeString()))
        .add("vendor", orNull(hardware != nullptr ? hardware->getVendor() : platform.getVendor()))
        .add("board", orNull(hardware != nullptr ? hardware->getBoardId() : ""))
        .add("name", orNull(hardware != nullptr ? hardware->getName() : platform.getName()))
        .add("version",
             orNull(hardware != nullptr ? hardware->getVersion() : platform.getVersion()))
        .add("state", orNull(hardware != nullptr ? hardware->getPlatformState() : ""))
        .add("generatedBy", orNull(hardware != nullptr ? hardware->getGeneratedName() : ""))
        .add("generatedVersion", orNull(hardware != nullptr ? hardware->getGeneratedVersion() : ""))
        .addPath("hardwareFile", platform.getHardwarePlatformFile())
        .addPath("emulationFile", platform.getHardwareEmuPlatformFile())
        .addPath("softwareFile", platform.getSoftwarePlatformFile());
    return made;
}

JSONValue device(const Subject& subject) {
    if (subject.hardware == nullptr) return nullptr;
    const HPLPlatform& hardware = *subject.hardware;
    const std::string host = hardware.getHostArch();
    HSTVector<std::string> slrs;
    hardware.getValidSLRNames(slrs);
    return JSONValue::object()
        .add("part", orNull(hardware.getPartName()))
        .add("device", orNull(hardware.getFpgaDevice()))
        .add("host", orNull(host == "unknown" ? "" : host))
        .add("interface", orNull(hardware.getInterfaceDesc()))
        .add("slrs", JSONValue::list(slrs))
        .add("lut", JSONValue::number(hardware.getLUTCount()))
        .add("register", JSONValue::number(hardware.getRegisterCount()))
        .add("bram", JSONValue::number(hardware.getBRAMCount()))
        .add("uram", JSONValue::number(hardware.getURAMCount()))
        .add("dsp", JSONValue::number(hardware.getDSPCount()));
}

JSONValue targets(const Subject& subject) {
    const HMAVPlatform& platform = subject.platform;
    if (subject.hardware == nullptr) return nullptr;
    return JSONValue::object()
        .add("hardware", platform.supportsHardware())
        .add("softwareEmulation", platform.supportsSWEmulation())
        .add("hardwareEmulation", platform.supportsHWEmulation())
        .add("expandable", platform.isExpandable())
        .add("unified", platform.isUnified())
        .add("dataCenter", platform.getDesignIntentDataCenter())
        .add("embedded", platform.getDesignIntentEmbedded())
        .add("externalHost", platform.getDesignIntentExternalHost())
        .add("serverManaged", platform.getDesignIntentServerManaged());
}

JSONValue support(const Subject& subject) {
    if (subject.hardware == nullptr || subject.verdict == nullptr) return nullptr;
    JSONValue made = JSONValue::object();
    subject.verdict->addTo(made);
    return made;
}

JSONValue clocks(const Subject& subject) {
    JSONValue list = JSONValue::list();
    if (subject.hardware == nullptr) return list;
    HSTVector<HMAVSystemClock*> all;
    subject.hardware->getSystemClocks(all);
    const HMAVSystemClock* const standard = subject.hardware->getDefaultClock();
    for (const HMAVSystemClock* clock : all) {
        list.add(JSONValue::object()
                     .add("id", clock->getId())
                     .add("name", clock->getName())
                     .add("megahertz", JSONValue::number(clock->getFrequency()))
                     .add("status", orNull(clock->getStatus()))
                     .add("default", clock == standard));
    }
    return list;
}

JSONValue memories(const Subject& subject) {
    JSONValue list = JSONValue::list();
    if (subject.hardware == nullptr) return list;
    for (const HPLMemory* memory : subject.hardware->getMemories()) {
        list.add(JSONValue::object()
                     .add("name", memory->getName())
                     .add("type", orNull(memory->getType()))
                     .add("size", orNull(memory->getSize()))
                     .add("lowAddress", memory->getLowAddress())
                     .add("highAddress", memory->getHighAddress())
                     .add("slr", orNull(subject.hardware->getMemorySLR(memory->getName()))));
    }
    return list;
}

JSONValue bank(const HMAVHardwareBusInterface& bus, const HMAVHardwareAddressSegment* segment) {
    const auto own = [&](const std::string& text, const std::string& shared) {
        return orNull(segment == nullptr || text.empty() ? shared : text);
    };
    const std::string none;
    return JSONValue::object()
        .add("interface", bus.getName())
        .add("bank", orNull(segment != nullptr ? segment->getName() : none))
        .add("tag", own(segment != nullptr ? segment->getSPTag() : none, bus.getSPTag()))
        .add("slr", own(segment != nullptr ? segment->getSLR() : none, bus.getSLR()))
        .add("memory",
             orNull(segment != nullptr ? segment->getMemoryInstance() : bus.getMemoryInstance()))
        .add("auto", orNull(segment != nullptr ? segment->getAuto() : none));
}

JSONValue banks(const Subject& subject) {
    JSONValue list = JSONValue::list();
    if (subject.hardware == nullptr) return list;
    HSTVector<HMAVHardwareBusInterface*> interfaces;
    subject.hardware->getMemoryBusInterfaces(interfaces);
    for (const HMAVHardwareBusInterface* bus : interfaces) {
        if (bus->getAddressSegments().empty()) list.add(bank(*bus, nullptr));
        for (const HMAVHardwareAddressSegment* segment : bus->getAddressSegments())
            list.add(bank(*bus, segment));
    }
    return list;
}

JSONValue interfaces(const Subject& subject) {
    JSONValue list = JSONValue::list();
    if (subject.hardware == nullptr) return list;
    HSTVector<HMAVHardwareBusInterface*> all;
    subject.hardware->getBusInterfaces(all);
    for (const HMAVHardwareBusInterface* bus : all) {
        list.add(JSONValue::object()
                     .add("name", bus->getName())
                     .add("kind", orNull(bus->getBusTypeRef()))
                     .add("mode", orNull(bus->getMode()))
                     .add("port", orNull(bus->getMemPort()))
                     .add("tag", orNull(bus->getSPTag()))
                     .add("dataWidth", bus->getDataWidth())
                     .add("clock", orNull(bus->getClockRef()))
                     .add("slr", orNull(bus->getSLR())));
    }
    return list;
}

JSONValue partitions(const Subject& subject) {
    HSTVector<HMAVReconfigurablePartition*> all;
    subject.platform.getReconfigurablePartitions(all);
    JSONValue list = JSONValue::list();
    for (const HMAVReconfigurablePartition* partition : all) {
        const HMAVHardwarePlatform* const hardware = partition->getHardwarePlatform();
        list.add(JSONValue::object()
                     .add("id", partition->getID())
                     .add("name", orNull(hardware != nullptr ? hardware->getName() : ""))
                     .addPath("hardwareFile", partition->getHardwarePlatformFile())
                     .addPath("emulationFile", partition->getHardwareEmulationPlatformFile())
                     .add("default", partition->getID() == subject.platform.getDefaultRPId()));
    }
    return list;
}

JSONValue rowsOf(int start, int count) {
    if (count <= 0) return nullptr;
    return JSONValue::object().add("start", start).add("count", count);
}

JSONValue partitionList(const auto& partitions) {
    JSONValue list = JSONValue::list();
    for (const HMAVDpePartition& partition : partitions) {
        list.add(JSONValue::object()
                     .add("name", partition.dpeInst())
                     .add("startColumn", partition.startColumn())
                     .add("columns", partition.numColumns())
                     .add("interface", orNull(partition.plIntefaceID()))
                     .add("partitions", partitionList(partition.partitions())));
    }
    return list;
}

JSONValue array(const Subject& subject) {
    if (subject.hardware == nullptr) return nullptr;
    const HMAVDpeHardware& array = subject.hardware->getDpeHardware();
    return JSONValue::object()
        .add("architecture", array.getArch() == HMAVDpeHardware::NO_DPE
                                 ? JSONValue(nullptr)
                                 : JSONValue(array.getArchAsString()))
        .add("shimRows", rowsOf(array.getStartShimRow(), array.getNumShimRows()))
        .add("memoryRows", rowsOf(array.getStartMemRow(), array.getNumMemRows()))
        .add("coreRows", rowsOf(array.getStartCoreRow(), array.getNumCoreRows()))
        .add("partitions", partitionList(subject.hardware->getDpePartitions()));
}

JSONValue groupsOf(const HMAVSystemConfig& config) {
    HSTVector<HMAVProcessorGroup*> groups;
    config.getProcessorGroups(groups);
    JSONValue list = JSONValue::list();
    for (const HMAVProcessorGroup* group : groups) {
        list.add(JSONValue::object()
                     .add("name", group->getName())
                     .add("cpu", orNull(group->getCpuType()))
                     .add("os", orNull(group->getOSName())));
    }
    return list;
}

JSONValue imagesOf(const HMAVSystemConfig& config) {
    HSTVector<HMAVBootImg*> images;
    config.getBootImgs(images);
    JSONValue list = JSONValue::list();
    for (const HMAVBootImg* image : images) {
        list.add(JSONValue::object()
                     .add("name", image->getName())
                     .add("bif", orNull(image->getBif()))
                     .add("data", orNull(image->getImgData()))
                     .add("rootFileSystem", orNull(image->getRootFS())));
    }
    return list;
}

JSONValue software(const Subject& subject) {
    JSONValue list = JSONValue::list();
    const HMAVSoftwarePlatform* const software = subject.platform.getSoftwarePlatform();
    if (software == nullptr) return list;
    HSTVector<HMAVSystemConfig*> configs;
    software->getSystemConfigs(configs);
    for (const HMAVSystemConfig* config : configs) {
        HSTVector<std::string> runtimes;
        config->getRuntimes(runtimes);
        list.add(JSONValue::object()
                     .add("configuration", config->getName())
                     .add("default", config->getName() == software->getDefaultConfigName())
                     .add("runtimes", JSONValue::list(runtimes))
                     .add("groups", groupsOf(*config))
                     .add("bootImages", imagesOf(*config)));
    }
    return list;
}

void addEmulation(JSONValue& list, const HMAVHardwarePlatform* platform) {
    const auto* const hardware = dynamic_cast<const HPLPlatform*>(platform);
    if (hardware == nullptr || hardware->getEmulations() == nullptr) return;
    for (const HMAVEmulation* emulation : hardware->getEmulations()->getEmulations()) {
        for (const HMAVEmulationFile* file : emulation->getFiles()) {
            list.add(JSONValue::object()
                         .add("variant", emulation->getName())
                         .add("type", orNull(file->getType()))
                         .add("member", file->getName()));
        }
    }
}

JSONValue emulation(const Subject& subject) {
    JSONValue list = JSONValue::list();
    addEmulation(list, subject.hardware);
    addEmulation(list, subject.platform.getHardwareEmulationPlatform());
    return list;
}

JSONValue files(const Subject& subject) {
    JSONValue list = JSONValue::list();
    if (subject.hardware == nullptr) return list;
    for (const HPLFile* file : subject.hardware->getFiles()) {
        list.add(JSONValue::object()
                     .add("type", orNull(file->getType()))
                     .add("member", file->getName()));
    }
    return list;
}

struct Section {
    const char* name;
    JSONValue (*make)(const Subject&);
};
constexpr Section SECTIONS[] = {
    {"identity", identity}, {"device", device},         {"targets", targets},
    {"support", support},   {"clocks", clocks},         {"memories", memories},
    {"banks", banks},       {"interfaces", interfaces}, {"partitions", partitions},
    {"array", array},       {"software", software},     {"emulation", emulation},
    {"files", files},
};

}  // namespace

const HSTVector<std::string>& PlatformOverview::sections() {
    static const HSTVector<std::string> NAMES = [] {
        HSTVector<std::string> names;
        for (const Section& section : SECTIONS) names.emplace_back(section.name);
        return names;
    }();
    return NAMES;
}

JSONValue PlatformOverview::answer(mav_platform::PlatformLoader& loader, const std::string& file,
                                   const HSTVector<std::string>& wanted, const Verdict* verdict) {
    const auto platform = loader.load();
    JSONValue made = JSONValue::answer("show").addPath("file", file);
    if (!platform) return made;
    const Subject subject{
        *platform, dynamic_cast<const HPLPlatform*>(std::as_const(*platform).getHardwarePlatform()),
        verdict};
    made.add("name", orNull(subject.hardware != nullptr ? subject.hardware->getVBNV()
                                                        : platform->getPlatformBaseName()));
    for (const Section& section : SECTIONS) {
        const bool shown =
            wanted.empty() || std::find(wanted.begin(), wanted.end(), section.name) != wanted.end();
        made.add(section.name, shown ? section.make(subject) : JSONValue(nullptr));
    }
    return made;
}

}  // namespace mav::platform
