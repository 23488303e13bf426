// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformLoader.h"

#include <ostream>

#include "archive/OpenArchives.h"
#include "formats/metadata/HMAVDsaJsonReader.h"
#include "formats/metadata/HMAVDsaXmlReader.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformXMLReader.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/PlatformParseException.h"

namespace mav_platform {
namespace {

constexpr const char* HARDWARE_FAILED = "Failed to parse Hardware Platform metadata file";
constexpr const char* EMULATION_FAILED =
    "Failed to parse Hardware Emulation Platform metadata file";

/// Names on the console the file that the text of an exception leaves open.
void nameFile(const char* role, const std::string& path) {
    mav_host::console() << role << " file: " << path << "\n" << std::flush;
}

}  // namespace

PlatformParseException::~PlatformParseException() = default;

PlatformLoader::PlatformLoader(const std::string& path, HwMetadataMode mode)
    : platform_(std::make_shared<HMAVPlatform>()),
      filePath_(path),
      hwMetadataMode_(mode),
      archives_(std::make_unique<OpenArchives>()) {
    if (path.empty()) return;
    const std::string extension = HUTPathUtils::extension(path);
    if (HMAVHardwarePlatform::isValidPlatformExt(extension)) {
        fileKind_ = HARDWARE_ARCHIVE;
    } else if (extension == ".spfm") {
        fileKind_ = SOFTWARE_PLATFORM;
    } else {
        parseDescription_();
        return;
    }
    platform_->setQpfm(false);
    platform_->setPartial(true);
}

PlatformLoader::~PlatformLoader() = default;

void PlatformLoader::parseDescription_() {
    platform_->setQpfm(true);
    HMAVPlatformXMLReader reader(filePath_, platform_.get());
    if (!reader.parseFile()) throw PlatformParseException("failed to parse the QPFM file");
}

std::shared_ptr<HMAVPlatform> PlatformLoader::load() {
    if (loaded_ || !platform_) return platform_;
    try {
        attachAll_();
        loaded_ = true;
    } catch (const PlatformParseException& error) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::CRITICAL_WARNING, "@74-60@%s", {error.what()});
        platform_.reset();
    }
    archives_ = std::make_unique<OpenArchives>();
    return platform_;
}

void PlatformLoader::attachAll_() {
    if (platform_->hasReconfigurablePartitions()) {
        loadReconfigurablePartitions_();
    } else {
        attachHardwarePlatform();
        attachHardwareEmulationPlatform();
    }
    attachSoftwarePlatform();
}

void PlatformLoader::attachHardwarePlatform() {
    // The own field counts, not the default partition's platform; without partitions they agree.
    if (platform_->getHardwarePlatform() != nullptr) return;
    if (platform_->isPartial() && fileKind_ == SOFTWARE_PLATFORM) return;
    std::string path;
    if (!platform_->isPartial()) {
        path = platform_->getHardwarePlatformFile();
    } else if (fileKind_ == HARDWARE_ARCHIVE) {
        path = filePath_;
    }
    if (!HUTFile::exists(path)) {
        throw PlatformParseException("hardware platform file '" + path + "' does not exist");
    }
    if (!HMAVHardwarePlatform::isValidPlatformExt(HUTPathUtils::extension(path))) {
        nameFile("Hardware platform", path);
        throw PlatformParseException(
            "incorrect file extension - only DSA and PKA files are supported");
    }
    const std::shared_ptr<HPLPlatform> hardware = platform_->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(hardware.get(), archives_.get());
    std::string member;
    const bool parsed = reader.canParse(path, hwMetadataMode_, member)
                            ? reader.parseDSA(path, hwMetadataMode_)
                            : HMAVDsaXmlReader(path, hardware.get(), archives_.get()).parseDSA();
    if (!parsed) throw PlatformParseException(HARDWARE_FAILED);
    platform_->setHardwarePlatform(hardware.get());
    if (platform_->isPartial()) platform_->setPlatformFile(hardware->getPlatformFile());
}

void PlatformLoader::attachHardwareEmulationPlatform() {
    if (platform_->getHardwareEmulationPlatform() != nullptr) return;
    const std::string path = platform_->getHardwareEmuPlatformFile();
    if (path.empty()) {
        attachMergedHardwareEmulationPlatform_();
        return;
    }
    // An emulation archive that does not parse is left out without failing the load.
    const std::shared_ptr<HPLPlatform> emulation = platform_->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(emulation.get(), archives_.get());
    if (reader.parseDSA(path, hwMetadataMode_)) {
        platform_->setHardwareEmulationPlatform(emulation.get());
    }
}

void PlatformLoader::attachMergedHardwareEmulationPlatform_() {
    const HMAVHardwarePlatform* hardware = platform_->getHardwarePlatform();
    if (hardware == nullptr || hardware->getPlatformFile().empty()) return;
    const std::string path = hardware->getPlatformFile();
    const std::shared_ptr<HPLPlatform> emulation = platform_->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(emulation.get(), archives_.get());
    if (!reader.parseHwEmuPKA(path, hwMetadataMode_)) return;
    emulation->setIsChildHardwareEmuPlatform(true);
    platform_->setHardwareEmulationPlatform(emulation.get());
}

void PlatformLoader::attachSoftwarePlatform() {
    if (platform_->getSoftwarePlatform() != nullptr) return;
    if (platform_->isPartial() && fileKind_ == HARDWARE_ARCHIVE) return;
    std::string path;
    if (!platform_->isPartial()) {
        path = platform_->getSoftwarePlatformFile();
    } else if (fileKind_ == SOFTWARE_PLATFORM) {
        path = filePath_;
    }
    if (path.empty()) return;
    if (!HUTFile::exists(path)) {
        nameFile("Software platform", path);
        throw PlatformParseException("the software platform file does not exist");
    }
    const std::shared_ptr<HMAVSoftwarePlatform> software =
        platform_->createMutableSoftwarePlatform();
    // The text is the one for a missing file also where the file is there and does not parse.
    if (!HMAVSoftwarePlatformXMLReader(path, software).parseFile()) {
        throw PlatformParseException("software platform file does not exist");
    }
    platform_->addSoftwarePlatform(software.get());
}

void PlatformLoader::loadReconfigurablePartitions_() {
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform_->getReconfigurablePartitions(partitions);
    for (HMAVReconfigurablePartition* partition : partitions) {
        attachHardwarePlatform_(partition);
        attachHardwareEmulationPlatform_(partition);
    }
}

void PlatformLoader::attachHardwarePlatform_(HMAVReconfigurablePartition* partition) {
    if (partition->getHardwarePlatform() != nullptr) return;
    const std::shared_ptr<HPLPlatform> hardware = platform_->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(hardware.get(), archives_.get());
    if (!reader.parseDSA(partition->getHardwarePlatformFile(), hwMetadataMode_)) {
        throw PlatformParseException(HARDWARE_FAILED);
    }
    partition->setHardwarePlatform(hardware.get());
    if (platform_->getDefaultRPId() == partition->getID()) {
        platform_->setDefaultRPHardwarePlatform(hardware.get());
    }
}

void PlatformLoader::attachHardwareEmulationPlatform_(HMAVReconfigurablePartition* partition) {
    const std::string path = partition->getHardwareEmulationPlatformFile();
    if (partition->getHardwareEmulationPlatform() != nullptr || path.empty()) return;
    const std::shared_ptr<HPLPlatform> emulation = platform_->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(emulation.get(), archives_.get());
    if (!reader.parseDSA(path, hwMetadataMode_)) throw PlatformParseException(EMULATION_FAILED);
    partition->setHardwareEmulationPlatform(emulation.get());
    if (platform_->getDefaultRPId() == partition->getID()) {
        platform_->setDefaultRPHardwareEmulationPlatform(emulation.get());
    }
}

std::string PlatformLoader::getName() const {
    return platform_ ? platform_->getName() : "";
}

std::string PlatformLoader::getVendor() const {
    return platform_ ? platform_->getVendor() : "";
}

std::string PlatformLoader::getDescription() const {
    return platform_ ? platform_->getDescription() : "";
}

std::string PlatformLoader::getVersion() const {
    return platform_ ? platform_->getVersion() : "";
}

std::string PlatformLoader::getFilePath() const {
    return platform_ ? platform_->getPlatformFile() : "";
}

std::string PlatformLoader::getBaseName() const {
    return platform_ ? platform_->getPlatformBaseName() : "";
}

std::string PlatformLoader::getHardwarePlatformFile() const {
    return platform_ ? platform_->getHardwarePlatformFile() : "";
}

std::string PlatformLoader::getHardwareEmuPlatformFile() const {
    return platform_ ? platform_->getHardwareEmuPlatformFile() : "";
}

std::string PlatformLoader::getSoftwarePlatformFile() const {
    return platform_ ? platform_->getSoftwarePlatformFile() : "";
}

}  // namespace mav_platform
