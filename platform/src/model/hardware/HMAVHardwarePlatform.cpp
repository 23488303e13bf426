// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwarePlatform.h"

#include <algorithm>

#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"

namespace {

template <class T>
void append(HSTVector<T*>& out, const OwnedList<T>& list) {
    out.insert(out.end(), list.items().begin(), list.items().end());
}

}  // namespace

HMAVHardwarePlatform::HMAVHardwarePlatform() = default;

HMAVHardwarePlatform::~HMAVHardwarePlatform() = default;

std::string HMAVHardwarePlatform::getBoardRepo() const {
    const char* const path = HUTEnv::getEnv("BOARD_REPO_PATH");
    return path != nullptr ? path : "";
}

std::string HMAVHardwarePlatform::getPlatformFile() const {
    return platformFile_;
}

void HMAVHardwarePlatform::setPlatformFile(std::string path) {
    platformFile_ = std::move(path);
}

void HMAVHardwarePlatform::getTargetCategories(HSTVector<std::string>& out) const {
    out.push_back("Acceleration");
}

void HMAVHardwarePlatform::getSystemClockNames(HSTVector<std::string>& out) const {
    for (const HMAVSystemClock* clock : systemClocks_.items()) out.push_back(clock->getName());
}

void HMAVHardwarePlatform::getCpuClockNames(HSTVector<std::string>& out) const {
    out.push_back("CPU");
}

std::string HMAVHardwarePlatform::getClockFrequency(const std::string& name) const {
    std::string frequency;
    for (const HMAVSystemClock* clock : systemClocks_.items()) {
        if (clock->getName() == name) frequency = clock->getFrequency();
    }
    return frequency;
}

void HMAVHardwarePlatform::getAllClockFrequencies(HSTVector<std::string>& out) const {
    for (const HMAVSystemClock* clock : systemClocks_.items()) out.push_back(clock->getFrequency());
}

void HMAVHardwarePlatform::getAllResources(
    HSTVector<std::pair<std::string, std::string>>& out) const {
    out.insert(out.end(), resources_.begin(), resources_.end());
}

void HMAVHardwarePlatform::addResource(std::string type, std::string count) {
    resources_.emplace_back(std::move(type), std::move(count));
}

std::string HMAVHardwarePlatform::getClockId(const std::string& name) const {
    std::string id;
    for (const HMAVSystemClock* clock : systemClocks_.items()) {
        if (clock->getName() == name) id = std::to_string(static_cast<int>(clock->getId()));
    }
    return id;
}

std::string HMAVHardwarePlatform::getPlatformFrequency(unsigned id) const {
    std::string frequency;
    for (const HMAVSystemClock* clock : systemClocks_.items()) {
        if (clock->getId() == id) frequency = clock->getFrequency();
    }
    return frequency;
}

HMAVSystemClock* HMAVHardwarePlatform::getDefaultClock() const {
    HMAVSystemClock* found = nullptr;
    for (HMAVSystemClock* clock : systemClocks_.items()) {
        if (clock->getId() == defaultClockId_) found = clock;
    }
    return found;
}

std::string HMAVHardwarePlatform::getDefaultClockFrequency() const {
    const HMAVSystemClock* const clock = getDefaultClock();
    return clock != nullptr ? clock->getFrequency() : "";
}

std::string HMAVHardwarePlatform::getDefaultClockId() const {
    return std::to_string(static_cast<int>(defaultClockId_));
}

std::string HMAVHardwarePlatform::getDefaultClockName() const {
    const HMAVSystemClock* const clock = getDefaultClock();
    return clock != nullptr ? clock->getName() : "";
}

HSTFwdIter<HMAVSystemClock*>* HMAVHardwarePlatform::createSystemClockIter() const {
    return new HSTVectorIter<HMAVSystemClock*>(systemClocks_.items());
}

void HMAVHardwarePlatform::getSystemClocks(HSTVector<HMAVSystemClock*>& out) const {
    append(out, systemClocks_);
}

HSTFwdIter<HMAVHardwareIPParam*>* HMAVHardwarePlatform::createIPParamIter() const {
    return new HSTVectorIter<HMAVHardwareIPParam*>(ipParams_.items());
}

void HMAVHardwarePlatform::getHardwareIPParams(HSTVector<HMAVHardwareIPParam*>& out) const {
    append(out, ipParams_);
}

HSTFwdIter<HMAVHardwareNocConnectivity*>* HMAVHardwarePlatform::createNocConnectivityIter() const {
    return new HSTVectorIter<HMAVHardwareNocConnectivity*>(nocConnectivity_.items());
}

HSTFwdIter<HMAVHardwareBusInterface*>* HMAVHardwarePlatform::createBusInterfaceIter() const {
    return new HSTVectorIter<HMAVHardwareBusInterface*>(busInterfaces_.items());
}

void HMAVHardwarePlatform::getNocConnectivity(HSTVector<HMAVHardwareNocConnectivity*>& out) const {
    append(out, nocConnectivity_);
}

void HMAVHardwarePlatform::getBusInterfaces(HSTVector<HMAVHardwareBusInterface*>& out) const {
    append(out, busInterfaces_);
}

HMAVHardwareBusInterface* HMAVHardwarePlatform::getBusInterfaceByName(
    const std::string& name) const {
    for (HMAVHardwareBusInterface* bus : busInterfaces_.items()) {
        if (bus->getName() == name) return bus;
    }
    return nullptr;
}

void HMAVHardwarePlatform::getFeatureRoms(HSTVector<HMAVHardwareFeatureRom*>& out) const {
    append(out, featureRoms_);
}

HSTFwdIter<HMAVHardwareFeatureRom*>* HMAVHardwarePlatform::createFeatureRomIter() const {
    return new HSTVectorIter<HMAVHardwareFeatureRom*>(featureRoms_.items());
}

std::pair<HSTVector<HMAVHardwareFeatureRom*>::const_iterator,
          HSTVector<HMAVHardwareFeatureRom*>::const_iterator>
HMAVHardwarePlatform::getFeatureRomVecRange() const {
    return {featureRoms_.items().begin(), featureRoms_.items().end()};
}

std::string HMAVHardwarePlatform::getGeneratedName() const {
    return generatedName_;
}
std::string HMAVHardwarePlatform::getGeneratedVersion() const {
    return generatedVersion_;
}
std::string HMAVHardwarePlatform::getGeneratedTimestamp() const {
    return generatedTimestamp_;
}
unsigned HMAVHardwarePlatform::getGeneratedChangeList() const {
    return generatedChangeList_;
}
std::string HMAVHardwarePlatform::getGeneratedIpChangeList() const {
    return generatedIpChangeList_;
}
std::string HMAVHardwarePlatform::getGeneratedSharedDataChangeList() const {
    return generatedSharedDataChangeList_;
}
bool HMAVHardwarePlatform::isGeneratedByLink() const {
    return generatedByLink_;
}
bool HMAVHardwarePlatform::isGeneratedBySwEmuLink() const {
    return generatedBySwEmuLink_;
}
std::string HMAVHardwarePlatform::getIdCode() const {
    return idCode_;
}
std::string HMAVHardwarePlatform::getExtendedIdCode() const {
    return extendedIdCode_;
}
bool HMAVHardwarePlatform::supportsHardware() const {
    return supportsHardware_;
}
bool HMAVHardwarePlatform::supportsSWEmulation() const {
    return supportsSWEmulation_;
}
bool HMAVHardwarePlatform::supportsHWEmulation() const {
    return supportsHWEmulation_;
}
bool HMAVHardwarePlatform::supportsTwoHwEmuBd() const {
    return supportsTwoHwEmuBd_;
}
bool HMAVHardwarePlatform::supportsMemoryResourceIndex() const {
    return isMemoryResourceIndexed();
}
bool HMAVHardwarePlatform::supportsSegmentedConfiguration() const {
    return segmentedConfiguration_ == Tristate::ON;
}
bool HMAVHardwarePlatform::supportsDynamicReload() const {
    return dynamicReload_ == Tristate::ON;
}
void HMAVHardwarePlatform::setUsesNIFD(bool value) {
    usesNIFD_ = value;
}
bool HMAVHardwarePlatform::usesNIFD() const {
    return usesNIFD_;
}
void HMAVHardwarePlatform::setExpandable(bool value) {
    expandable_ = value;
}
void HMAVHardwarePlatform::setUnifiedPlatform(bool value) {
    unifiedPlatform_ = value;
}

void HMAVHardwarePlatform::setComputedDesignIntent(const HMAVDesignIntentStorage& intent) {
    computedIntent_ = intent;
}

void HMAVHardwarePlatform::setExplicitDesignIntent(const HMAVDesignIntentStorage& intent) {
    explicitIntent_ = intent;
}

HMAVDesignIntentStorage HMAVHardwarePlatform::getDesignIntent() const {
    const HMAVDesignIntentStorage& stated = explicitIntent_;
    const HMAVDesignIntentStorage& computed = computedIntent_;
    HMAVDesignIntentStorage intent = stated;
    if (!stated.isDataCenterExplicit() && computed.getDataCenter()) {
        intent.setDataCenter(true, false);
    }
    if (!stated.isEmbeddedExplicit() && computed.getEmbedded()) intent.setEmbedded(true, false);
    if (!stated.isExternalHostExplicit() && computed.getExternalHost()) {
        intent.setExternalHost(true, false);
    }
    if (!stated.isServerManagedExplicit() && computed.getServerManaged()) {
        intent.setServerManaged(true, false);
    }
    return intent;
}

HMAVHardwareIPParam* HMAVHardwarePlatform::addHardwareIPParam() {
    return ipParams_.add();
}
HMAVHardwareNocConnectivity* HMAVHardwarePlatform::addNocConnectivity() {
    return nocConnectivity_.add();
}
HMAVHardwareBusInterface* HMAVHardwarePlatform::addBusInterface() {
    return busInterfaces_.add();
}
HMAVSystemClock* HMAVHardwarePlatform::addSystemClock() {
    return systemClocks_.add();
}
HMAVHardwareFeatureRom* HMAVHardwarePlatform::addFeatureRom() {
    return featureRoms_.add();
}

std::string HMAVHardwarePlatform::getVBNV() const {
    return getVendor() + ":" + getBoardId() + ":" + getName() + ":" + getVersion();
}

std::string HMAVHardwarePlatform::getPlatformExt() const {
    return HUTFile::getExt(platformFile_);
}

std::string HMAVHardwarePlatform::getJsonFileName() const {
    const std::string extension = getPlatformExt();
    return extension.empty() ? "" : extension + ".json";
}

std::string HMAVHardwarePlatform::getAltJsonFileName() const {
    return "alt_" + getJsonFileName();
}

std::string HMAVHardwarePlatform::getHwEmuJsonFileName() const {
    const std::string name = getJsonFileName();
    return name.empty() ? "" : hwEmuMemberName(name);
}

std::string HMAVHardwarePlatform::getAltHwEmuJsonFileName() const {
    return hwEmuMemberName(getAltJsonFileName());
}

std::string HMAVHardwarePlatform::memberName(const std::string& member) const {
    return childHardwareEmuPlatform_ ? hwEmuMemberName(member) : member;
}

std::string HMAVHardwarePlatform::hwEmuMemberName(const std::string& member) {
    return getHwEmuDir() + "/" + member;
}

const std::string& HMAVHardwarePlatform::getHwEmuDir() {
    static const std::string DIR = "hw_emu";
    return DIR;
}

const HSTVector<std::string>& HMAVHardwarePlatform::getValidPlatformExts() {
    static const HSTVector<std::string> validPlatformExts = {".dsa", ".pka"};
    return validPlatformExts;
}

bool HMAVHardwarePlatform::isValidPlatformExt(const std::string& extension) {
    const auto& all = getValidPlatformExts();
    return std::find(all.begin(), all.end(), extension) != all.end();
}

int HMAVHardwarePlatform::getState() const {
    if (platformState_ == "synth") return 0;
    if (platformState_ == "impl") return 1;
    return platformState_ == "pre_synth" ? 2 : 3;
}

void HMAVHardwarePlatform::setState(int state) {
    static constexpr const char* TEXTS[] = {"synth", "impl", "pre_synth"};
    platformState_ = state >= 0 && state < 3 ? TEXTS[state] : "";
}

bool HMAVHardwarePlatform::hasFixedClocks() const {
    const auto& clocks = systemClocks_.items();
    return std::any_of(clocks.begin(), clocks.end(),
                       [](const HMAVSystemClock* clock) { return clock->isFixed(); });
}

bool HMAVHardwarePlatform::hasScalableClocks() const {
    const auto& clocks = systemClocks_.items();
    return std::any_of(clocks.begin(), clocks.end(),
                       [](const HMAVSystemClock* clock) { return clock->isScalable(); }) ||
           hasUserDefinedScalableClocks();
}

bool HMAVHardwarePlatform::hasSimContent() const {
    return hasFile("SIM_BINARY");
}

std::shared_ptr<HHSMHwDb> HMAVHardwarePlatform::getHwDb() {
    return hwDb_;
}

std::shared_ptr<const HHSMHwDb> HMAVHardwarePlatform::getHwDb() const {
    return hwDb_;
}

void HMAVHardwarePlatform::enableSegmentedConfiguration(bool value) {
    if (expandable_) segmentedConfiguration_ = value ? Tristate::ON : Tristate::OFF;
}

void HMAVHardwarePlatform::enableDynamicReload(bool value) {
    if (!expandable_) dynamicReload_ = value ? Tristate::ON : Tristate::OFF;
}

HMAVReconfigPartition* HMAVHardwarePlatform::findReconfigPartition(unsigned id) const {
    for (HMAVReconfigPartition* partition : reconfigPartitions_.items()) {
        if (partition->getDesignID() == id) return partition;
    }
    return nullptr;
}

void HMAVHardwarePlatform::getReconfigPartitions(HSTVector<HMAVReconfigPartition*>& out) const {
    append(out, reconfigPartitions_);
}

HMAVReconfigPartition& HMAVHardwarePlatform::createDesignIDs() {
    if (!designIDs_) designIDs_ = std::make_unique<HMAVReconfigPartition>();
    return *designIDs_;
}

void HMAVHardwarePlatform::getDesignIPInstances(HSTVector<HMAVDesignIPInstance*>& out) const {
    append(out, designIPs_);
}
