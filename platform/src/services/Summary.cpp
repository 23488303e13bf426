// SPDX-License-Identifier: Apache-2.0
#include "services/Summary.h"

#include <boost/property_tree/ptree.hpp>

#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLDevice.h"

namespace mav::platform {

namespace {

using boost::property_tree::ptree;

void put(ptree& info, const char* key, const std::string& value) {
    info.push_back({key, ptree(HI18N_convertToUTF8(value))});
}

void put(ptree& info, const char* key, const char* value) {
    put(info, key, std::string(value));
}

void put(ptree& info, const char* key, bool value) {
    put(info, key, value ? "true" : "false");
}

/// The member that describes the hardware, as a path inside the archive.
std::string hpfmFile(const HMAVHardwarePlatform* hardware) {
    const std::string member = hardware != nullptr ? hardware->getFile("HPFM") : "";
    return member.empty() ? "" : "<DSA>/" + member;
}

std::string clockCount(const HMAVHardwarePlatform* hardware) {
    HSTVector<HMAVSystemClock*> clocks;
    if (hardware != nullptr) hardware->getSystemClocks(clocks);
    return std::to_string(clocks.size());
}

std::string partArchitecture(const HMAVHardwarePlatform* hardware) {
    HSTVector<HMAVDevice*> devices;
    if (hardware != nullptr) hardware->getDevices(devices);
    const auto* device = devices.empty() ? nullptr : dynamic_cast<HPLDevice*>(devices.front());
    return device != nullptr ? device->getPart().getArchitecture() : "";
}

std::string arrayArchitecture(const HMAVHardwarePlatform* hardware) {
    return hardware != nullptr ? hardware->getDpeHardware().getArchAsString() : "";
}

void putState(ptree& info, const HMAVHardwarePlatform* hardware) {
    put(info, "platformState", hardware != nullptr ? hardware->getPlatformState() : "");
    put(info, "usesPR", hardware != nullptr && hardware->usesPR());
}

void putHardware(ptree& info, const HMAVHardwarePlatform* hardware,
                 const HMAVHardwarePlatform* emulation) {
    put(info, "hpfmFile", hpfmFile(hardware));
    put(info, "systemClockCount", clockCount(hardware));
    put(info, "hwEmuHpfmFile", hpfmFile(emulation));
    put(info, "hwEmuSystemClockCount", clockCount(emulation));
}

void putArchitectures(ptree& info, const HMAVHardwarePlatform* hardware) {
    put(info, "partArchitecture", partArchitecture(hardware));
    put(info, "dpeArchitecture", arrayArchitecture(hardware));
}

ptree partitionInfo(const HMAVReconfigurablePartition& partition) {
    const HMAVHardwarePlatform* const hardware = partition.getHardwarePlatform();
    ptree info;
    put(info, "id", std::to_string(partition.getID()));
    putState(info, hardware);
    put(info, "platformHwFile", partition.getHardwarePlatformFile());
    put(info, "platformHwEmuFile", partition.getHardwareEmulationPlatformFile());
    putHardware(info, hardware, partition.getHardwareEmulationPlatform());
    putArchitectures(info, hardware);
    return info;
}

void putPartitions(ptree& info, const HMAVPlatform& platform) {
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform.getReconfigurablePartitions(partitions);
    if (partitions.empty()) return;
    ptree& list = info.push_back({"reconfigurablePartitions", ptree()})->second;
    for (const HMAVReconfigurablePartition* partition : partitions)
        list.push_back({"", partitionInfo(*partition)});
}

/// Names and files of the platform; what it lacks is that of its default partition.
struct Files {
    explicit Files(const HMAVPlatform& platform)
        : baseName(platform.getPlatformBaseName()),
          hardware(platform.getHardwarePlatformFile()),
          emulation(platform.getHardwareEmuPlatformFile()) {
        const HMAVHardwarePlatform* const archive = platform.getHardwarePlatform();
        if (const auto* const partition =
                platform.getReconfigurablePartition(platform.getDefaultRPId())) {
            if (hardware.empty()) hardware = partition->getHardwarePlatformFile();
            if (emulation.empty()) emulation = partition->getHardwareEmulationPlatformFile();
        }
        if (hardware.empty() && archive != nullptr) hardware = archive->getPlatformFile();
        if (baseName.empty()) baseName = HUTPathUtils::stem(hardware);
    }
    std::string baseName;
    std::string hardware;
    std::string emulation;
};

void putIdentity(ptree& info, const HMAVPlatform& platform, const Files& files) {
    put(info, "baseName", files.baseName);
    put(info, "version", platform.getVersion());
    put(info, "type", platform.getTypeString());
    put(info, "dataCenter", platform.getDesignIntentDataCenter());
    put(info, "embedded", platform.getDesignIntentEmbedded());
    put(info, "externalHost", platform.getDesignIntentExternalHost());
    put(info, "serverManaged", platform.getDesignIntentServerManaged());
}

}  // namespace

void summarise(const HMAVPlatform& platform, const Warranty* warranty, bool partitions,
               ptree& info) {
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    const HMAVHardwarePlatform* const emulation = platform.getHardwareEmulationPlatform();
    const Files files(platform);
    putIdentity(info, platform, files);
    putState(info, hardware);
    put(info, "platformFile", platform.getPlatformFile());
    put(info, "platformHwFile", files.hardware);
    put(info, "platformHwEmuFile", files.emulation);
    putHardware(info, hardware, emulation);
    if (partitions) putPartitions(info, platform);
    put(info, "platformSwFile", platform.getSoftwarePlatformFile());
    putArchitectures(info, hardware);
    if (warranty != nullptr) {
        put(info, "warranty", warranty->supported);
        put(info, "warrantyReason", warranty->reason);
    }
    put(info, "hardware", platform.supportsHardware());
    put(info, "hardwareEmulation", platform.supportsHWEmulation());
    put(info, "twoHwEmuBd", platform.hasDistinctHardwareEmulationPlatform());
    put(info, "softwareEmulation", platform.supportsSWEmulation());
}

}  // namespace mav::platform
