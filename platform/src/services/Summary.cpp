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
using mav_platform::JSONValue;

/// One call for each kind of value.
template <class... Calls>
struct Each : Calls... {
    using Calls::operator()...;
};
template <class... Calls>
Each(Calls...) -> Each<Calls...>;

/// The member that describes the hardware, as a path inside the archive.
std::string hpfmFile(const HMAVHardwarePlatform* hardware) {
    const std::string member = hardware != nullptr ? hardware->getFile("HPFM") : "";
    return member.empty() ? "" : "<DSA>/" + member;
}

std::size_t clockCount(const HMAVHardwarePlatform* hardware) {
    HSTVector<HMAVSystemClock*> clocks;
    if (hardware != nullptr) hardware->getSystemClocks(clocks);
    return clocks.size();
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

}  // namespace

void Summary::addState(const HMAVHardwarePlatform* hardware) {
    add("platformState", hardware != nullptr ? hardware->getPlatformState() : "");
    add("usesPR", hardware != nullptr && hardware->usesPR());
}

void Summary::addHardware(const HMAVHardwarePlatform* hardware,
                          const HMAVHardwarePlatform* emulation) {
    add("hpfmFile", hpfmFile(hardware));
    add("systemClockCount", clockCount(hardware));
    add("hwEmuHpfmFile", hpfmFile(emulation));
    add("hwEmuSystemClockCount", clockCount(emulation));
}

void Summary::addArchitectures(const HMAVHardwarePlatform* hardware) {
    add("partArchitecture", partArchitecture(hardware));
    add("dpeArchitecture", arrayArchitecture(hardware));
}

Summary::Summary(const HMAVReconfigurablePartition& partition) {
    const HMAVHardwarePlatform* const hardware = partition.getHardwarePlatform();
    add("id", std::size_t{partition.getID()});
    addState(hardware);
    add("platformHwFile", Path{partition.getHardwarePlatformFile()});
    add("platformHwEmuFile", Path{partition.getHardwareEmulationPlatformFile()});
    addHardware(hardware, partition.getHardwareEmulationPlatform());
    addArchitectures(hardware);
}

Summary::Summary(const HMAVPlatform& platform) {
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    const Files files(platform);
    add("baseName", files.baseName);
    add("version", platform.getVersion());
    add("type", std::string(platform.getTypeString()));
    add("dataCenter", platform.getDesignIntentDataCenter());
    add("embedded", platform.getDesignIntentEmbedded());
    add("externalHost", platform.getDesignIntentExternalHost());
    add("serverManaged", platform.getDesignIntentServerManaged());
    addState(hardware);
    add("platformFile", Path{platform.getPlatformFile()});
    add("platformHwFile", Path{files.hardware});
    add("platformHwEmuFile", Path{files.emulation});
    addHardware(hardware, platform.getHardwareEmulationPlatform());
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform.getReconfigurablePartitions(partitions);
    std::vector<Summary> list;
    for (const HMAVReconfigurablePartition* partition : partitions)
        list.push_back(Summary(*partition));
    add("reconfigurablePartitions", std::move(list));
    add("platformSwFile", Path{platform.getSoftwarePlatformFile()});
    addArchitectures(hardware);
    warrantyPlace_ = members_.size();
    add("hardware", platform.supportsHardware());
    add("hardwareEmulation", platform.supportsHWEmulation());
    add("twoHwEmuBd", platform.hasDistinctHardwareEmulationPlatform());
    add("softwareEmulation", platform.supportsSWEmulation());
}

void Summary::addWarranty(bool supported, const std::string& reason) {
    const auto place = members_.begin() + static_cast<std::ptrdiff_t>(warrantyPlace_);
    members_.insert(place, {{"warranty", supported}, {"warrantyReason", reason}});
}

void Summary::addTo(ptree& info, bool partitions) const {
    for (const auto& [key, value] : members_) {
        const auto put = [&, name = key](const std::string& text) {
            info.push_back({name, ptree(HI18N_convertToUTF8(text))});
        };
        const auto putList = [&, name = key](const std::vector<Summary>& list) {
            if (!partitions || list.empty()) return;
            ptree& items = info.push_back({name, ptree()})->second;
            for (const Summary& item : list)
                item.addTo(items.push_back({"", ptree()})->second, false);
        };
        std::visit(Each{[&](const std::string& text) { put(text); },
                        [&](const Path& path) { put(path.text); },
                        [&](bool yes) { put(yes ? "true" : "false"); },
                        [&](std::size_t count) { put(std::to_string(count)); }, putList},
                   value);
    }
}

void Summary::addTo(JSONValue& info) const {
    for (const auto& [key, value] : members_) {
        const auto addList = [&, name = key](const std::vector<Summary>& list) {
            JSONValue items = JSONValue::list();
            for (const Summary& item : list) {
                JSONValue object = JSONValue::object();
                item.addTo(object);
                items.add(std::move(object));
            }
            info.add(name, std::move(items));
        };
        std::visit(Each{[&, name = key](const std::string& text) {
                            info.add(name, JSONValue::orNull(text));
                        },
                        [&, name = key](const Path& path) { info.addPath(name, path.text); },
                        [&, name = key](auto plain) { info.add(name, plain); }, addList},
                   value);
    }
}

}  // namespace mav::platform
