// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVPlatform.h"

#include <algorithm>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"

using mav_platform::JSONListWriter;
using mav_platform::JSONObjectWriter;

namespace {

/// Unique name of the sample platform that tools do not show.
constexpr const char* HIDDEN_PLATFORM = "mav:sample:hidden:1.0";

}  // namespace

HMAVPlatform::HMAVPlatform() = default;

HMAVPlatform::~HMAVPlatform() {
    for (HMAVReconfigurablePartition* partition : reconfigurablePartitions_) delete partition;
}

std::shared_ptr<HPLPlatform> HMAVPlatform::createMutableHardwarePlatform() {
    auto platform = std::make_shared<HPLPlatform>();
    shareHardwarePlatform(platform);
    return platform;
}

void HMAVPlatform::shareHardwarePlatform(const std::shared_ptr<HPLPlatform>& hardware) {
    const auto index = static_cast<unsigned>(ownedHardwarePlatforms_.size());
    ownedHardwarePlatforms_.push_back(hardware);
    ownedHardwareIndex_.emplace(hardware.get(), index);
}

std::shared_ptr<HMAVSoftwarePlatform> HMAVPlatform::createMutableSoftwarePlatform() {
    auto platform = std::make_shared<HMAVSoftwarePlatform>();
    const auto index = static_cast<unsigned>(ownedSoftwarePlatforms_.size());
    ownedSoftwarePlatforms_.push_back(platform);
    ownedSoftwareIndex_.emplace(platform.get(), index);
    return platform;
}

HPLPlatform* HMAVPlatform::owned_(HMAVHardwarePlatform* platform, const char* refusal) const {
    auto* const concrete = dynamic_cast<HPLPlatform*>(platform);
    if (concrete == nullptr || ownedHardwareIndex_.count(concrete) == 0) {
        throw HEXAlgException(refusal);
    }
    return concrete;
}

void HMAVPlatform::setHardwarePlatform(HMAVHardwarePlatform* platform) {
    hardwarePlatform_ = owned_(platform, "invalid set hardware platform");
}

void HMAVPlatform::setHardwareEmulationPlatform(HMAVHardwarePlatform* platform) {
    hardwareEmulationPlatform_ = owned_(platform, "set invalid hardware emulation platform");
}

void HMAVPlatform::setDefaultRPHardwarePlatform(HMAVHardwarePlatform* platform) {
    defaultRPHardwarePlatform_ = owned_(platform, "invalid set default RP hardware platform");
}

void HMAVPlatform::setDefaultRPHardwareEmulationPlatform(HMAVHardwarePlatform* platform) {
    defaultRPHardwareEmulationPlatform_ =
        owned_(platform, "set invalid hardware emulation platform");
}

void HMAVPlatform::addSoftwarePlatform(HMAVSoftwarePlatform* platform) {
    if (ownedSoftwareIndex_.count(platform) == 0) {
        throw HEXAlgException("added invalid software platform");
    }
    softwarePlatforms_.push_back(platform);
}

void HMAVPlatform::addReconfigurablePartition(HMAVReconfigurablePartition* partition) {
    if (partition == nullptr) return;
    std::unique_ptr<HMAVReconfigurablePartition> owned(partition);
    reconfigurablePartitions_.push_back(partition);
    static_cast<void>(owned.release());
}

std::string HMAVPlatform::getPlatformDir() const {
    return HUTFile::getParent(platformFile_);
}

std::string HMAVPlatform::getPlatformBaseName() const {
    return HUTPathUtils::stem(platformFile_);
}

std::string HMAVPlatform::getDeviceName() const {
    return partial_ && hardwarePlatform_ != nullptr ? hardwarePlatform_->getDeviceName()
                                                    : getPlatformBaseName();
}

HMAVHardwarePlatform* HMAVPlatform::getHardwarePlatform() {
    return hardwarePlatform_ != nullptr ? hardwarePlatform_ : defaultRPHardwarePlatform_;
}

const HMAVHardwarePlatform* HMAVPlatform::getHardwarePlatform() const {
    return hardwarePlatform_ != nullptr ? hardwarePlatform_ : defaultRPHardwarePlatform_;
}

HMAVHardwarePlatform* HMAVPlatform::getHardwareEmulationPlatform() {
    return hardwareEmulationPlatform_ != nullptr ? hardwareEmulationPlatform_
                                                 : defaultRPHardwareEmulationPlatform_;
}

const HMAVHardwarePlatform* HMAVPlatform::getHardwareEmulationPlatform() const {
    return hardwareEmulationPlatform_ != nullptr ? hardwareEmulationPlatform_
                                                 : defaultRPHardwareEmulationPlatform_;
}

HMAVSoftwarePlatform* HMAVPlatform::getSoftwarePlatform() {
    return softwarePlatforms_.empty() ? nullptr : softwarePlatforms_.front();
}

const HMAVSoftwarePlatform* HMAVPlatform::getSoftwarePlatform() const {
    return softwarePlatforms_.empty() ? nullptr : softwarePlatforms_.front();
}

void HMAVPlatform::getSoftwarePlatforms(HSTVector<HMAVSoftwarePlatform*>& out) const {
    out.insert(out.end(), softwarePlatforms_.begin(), softwarePlatforms_.end());
}

void HMAVPlatform::getReconfigurablePartitions(HSTVector<HMAVReconfigurablePartition*>& out) const {
    out = reconfigurablePartitions_;
}

HMAVReconfigurablePartition* HMAVPlatform::getReconfigurablePartition(unsigned id) const {
    HMAVReconfigurablePartition* found = nullptr;
    for (HMAVReconfigurablePartition* partition : reconfigurablePartitions_) {
        if (partition->getID() == id) found = partition;
    }
    return found;
}

HMAVHardwarePlatform* HMAVPlatform::getRPHardwarePlatform(unsigned id) const {
    const HMAVReconfigurablePartition* const partition = getReconfigurablePartition(id);
    return partition != nullptr ? partition->getHardwarePlatform() : nullptr;
}

HMAVHardwarePlatform* HMAVPlatform::getRPHardwareEmulationPlatform(unsigned id) const {
    const HMAVReconfigurablePartition* const partition = getReconfigurablePartition(id);
    return partition != nullptr ? partition->getHardwareEmulationPlatform() : nullptr;
}

HMAVHardwarePlatform* HMAVPlatform::getDefaultRPHardwarePlatform() const {
    return getRPHardwarePlatform(defaultRPId_);
}

HMAVHardwarePlatform* HMAVPlatform::getDefaultRPHardwareEmulationPlatform() const {
    return getRPHardwareEmulationPlatform(defaultRPId_);
}

bool HMAVPlatform::supportsHardware() const {
    return effectiveHardware_() != nullptr && effectiveHardware_()->supportsHardware();
}

bool HMAVPlatform::supportsSWEmulation() const {
    return effectiveHardware_() != nullptr && effectiveHardware_()->supportsSWEmulation();
}

bool HMAVPlatform::hasSimContent() const {
    return effectiveHardware_() != nullptr && effectiveHardware_()->hasSimContent();
}

bool HMAVPlatform::isExpandable() const {
    return effectiveHardware_() != nullptr && effectiveHardware_()->isExpandable();
}

bool HMAVPlatform::isUnified() const {
    return effectiveHardware_() != nullptr && effectiveHardware_()->isUnifiedPlatform();
}

HMAVDesignIntentStorage HMAVPlatform::designIntent_() const {
    return effectiveHardware_() != nullptr ? effectiveHardware_()->getDesignIntent()
                                           : HMAVDesignIntentStorage();
}

bool HMAVPlatform::getDesignIntentDataCenter() const {
    return designIntent_().getDataCenter();
}

bool HMAVPlatform::getDesignIntentEmbedded() const {
    return designIntent_().getEmbedded();
}

bool HMAVPlatform::getDesignIntentExternalHost() const {
    return designIntent_().getExternalHost();
}

bool HMAVPlatform::getDesignIntentServerManaged() const {
    return designIntent_().getServerManaged();
}

bool HMAVPlatform::supportsHWEmulation() const {
    if (hardwareEmulationPlatform_ != nullptr) return true;
    if (hasReconfigurablePartitions()) return hasRPHardwareEmulationPlatform();
    return hardwarePlatform_ != nullptr && hardwarePlatform_->supportsHWEmulation();
}

bool HMAVPlatform::hasRPHardwareEmulationPlatform() const {
    return std::any_of(reconfigurablePartitions_.begin(), reconfigurablePartitions_.end(),
                       [](const HMAVReconfigurablePartition* partition) {
                           return partition->hasHardwareEmulationPlatform();
                       });
}

bool HMAVPlatform::supportsTwoHwEmuBd() const {
    return hardwarePlatform_ != nullptr && hardwarePlatform_->supportsTwoHwEmuBd();
}

bool HMAVPlatform::isHWEmuPlatform() const {
    return hardwarePlatform_ != nullptr && hardwarePlatform_->isHWEmuPlatform();
}

bool HMAVPlatform::hasDimmConnectors() const {
    return hardwarePlatform_ != nullptr && hardwarePlatform_->hasDimmConnectors();
}

void HMAVPlatform::getDimmConnectors(HSTVector<std::string>& out) const {
    if (hardwarePlatform_ != nullptr) hardwarePlatform_->getDimmConnectors(out);
}

void HMAVPlatform::getTargetCategories(HSTVector<std::string>& out) const {
    if (hardwarePlatform_ != nullptr) hardwarePlatform_->getTargetCategories(out);
    if (defaultRPHardwarePlatform_ != nullptr) {
        defaultRPHardwarePlatform_->getTargetCategories(out);
    }
}

bool HMAVPlatform::isHidden() const {
    return platformFile_ == HIDDEN_PLATFORM;
}

std::string HMAVPlatform::getTypeString() const {
    const auto* const hardware = dynamic_cast<const HPLPlatform*>(effectiveHardware_());
    if (hardware == nullptr) return "";
    const HMAVDesignIntentStorage intent = hardware->getDesignIntent();
    if (intent.getDataCenter() || intent.getExternalHost() || intent.getServerManaged()) {
        return intent.getEmbedded() ? "acceleration" : "pellux";
    }
    return intent.getEmbedded() ? "quorin" : "undefined";
}

std::string HMAVPlatform::getTypePrettyString() const {
    const std::string type = getTypeString();
    if (type == "pellux") return "Pellux";
    if (type == "quorin") return "Quorin";
    return type == "acceleration" ? "Acceleration" : "Undefined";
}

void HMAVPlatform::toShortJSON(JSONObjectWriter& writer) const {
    writer.addKey("uniqueName", getUniqueName());
    writer.addKey("file", getPlatformFile());
    writer.addKey("description", getDescription());
}

void HMAVPlatform::toJSON(JSONObjectWriter& writer) const {
    writer.addKey("vendor", vendor_);
    writer.addKey("name", name_);
    writer.addKey("description", description_);
    writer.addKey("uniqueName", platformFile_);
    writer.addKey("version", version_);
    writer.addKey("type", getTypePrettyString());
    writer.addKey("unified", isUnified());
    writer.addKey("qpfm", qpfm_);
    writer.addKey("hardware", supportsHardware());
    writer.addKey("softwareEmulation", supportsSWEmulation());
    writer.addKey("hardwareEmulation", supportsHWEmulation());
    writer.addKey("hardwareEmuPlatform", isHWEmuPlatform());
    writer.addKey("hidden", isHidden());
    writer.addKey("file", platformFile_);
    writer.addKey("hwFile", hardwarePlatformFile_);
    writer.addKey("hwEmuFile", hardwareEmuPlatformFile_);
    writer.addKey("swFile", softwarePlatformFile_);
    writer.addKey("directory", getPlatformDir());
    HSTVector<std::string> categories;
    getTargetCategories(categories);
    writer.addKey("targetCategories", categories);
    writePlatforms(writer);
}

void HMAVPlatform::writePlatforms(JSONObjectWriter& writer) const {
    static const std::string HARDWARE_PLATFORMS_KEY = "hardwarePlatforms";
    static const std::string HARDWARE_PLATFORM_KEY = "hardwarePlatform";
    static const std::string SOFTWARE_PLATFORM_KEY = "softwarePlatform";
    static const std::string HW_EMU_PLATFORM_KEY = "hwEmuPlatform";
    static const std::string DEFAULT_RP_ID_KEY = "defaultRPId";
    static const std::string RECONFIGURABLE_PARTITIONS_KEY = "reconfigurablePartitions";

    // Stands beside the vendor and in front of the hardware platforms, not inside them.
    if (hasReconfigurablePartitions()) writer.addKey(DEFAULT_RP_ID_KEY, defaultRPId_);
    writer.addObject(HARDWARE_PLATFORMS_KEY, [&](JSONObjectWriter& hardware) {
        hardware.addKey(HARDWARE_PLATFORM_KEY, getHardwarePlatform());
        if (hasDistinctHardwareEmulationPlatform()) {
            hardware.addKey(HW_EMU_PLATFORM_KEY, getHardwareEmulationPlatform());
        }
        hardware.addList(RECONFIGURABLE_PARTITIONS_KEY, [&](JSONListWriter& list) {
            for (const HMAVReconfigurablePartition* partition : reconfigurablePartitions_) {
                list.addItem(partition);
            }
        });
    });
    writer.addKey(SOFTWARE_PLATFORM_KEY, getSoftwarePlatform());
}
