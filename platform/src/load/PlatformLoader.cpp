// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformLoader.h"

#include "archive/OpenArchives.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HMAVDsaXmlReader.h"
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

}  // namespace

PlatformParseException::~PlatformParseException() = default;

PlatformLoader::PlatformLoader(const std::string& path, HwMetadataMode mode)
    : platform_(std::make_shared<HMAVPlatform>()), filePath_(path), hwMetadataMode_(mode) {
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
        mav_host::report(mav_host::messages::NOT_LOADED, error.what());
        platform_.reset();
    }
    return platform_;
}

void PlatformLoader::attachAll_() {
    if (platform_->hasReconfigurablePartitions()) {
        loadReconfigurablePartitions_();
    } else {
        OpenArchives archives;
        attachHardwarePlatform(archives);
        attachHardwareEmulationPlatform(archives);
    }
    attachSoftwarePlatform();
}

/// The road of every archive: a hardware platform is made and read. Null when the reading declines;
/// what was made stays with the platform all the same.
template <class Read>
HPLPlatform* PlatformLoader::read_(OpenArchives& archives, Read read) {
    HPLPlatform* const hardware = platform_->createMutableHardwarePlatform().get();
    HMAVDsaJsonReader reader(hardware, &archives);
    return read(reader, *hardware) ? hardware : nullptr;
}

HPLPlatform* PlatformLoader::readArchive_(const std::string& path, OpenArchives& archives,
                                          const char* failed) {
    HPLPlatform* const hardware = read_(archives, [&](auto& reader, HPLPlatform&) {
        return reader.parseDSA(path, hwMetadataMode_);
    });
    if (hardware == nullptr) throw PlatformParseException(failed);
    return hardware;
}

void PlatformLoader::attachHardwarePlatform(OpenArchives& archives) {
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
        throw PlatformParseException(
            "incorrect file extension - only DSA and PKA files are supported");
    }
    HPLPlatform* const hardware = read_(archives, [&](auto& reader, HPLPlatform& fresh) {
        std::string member;
        return reader.canParse(path, hwMetadataMode_, member)
                   ? reader.parseDSA(path, hwMetadataMode_)
                   : HMAVDsaXmlReader(path, &fresh, &archives).parseDSA();
    });
    if (hardware == nullptr) throw PlatformParseException(HARDWARE_FAILED);
    platform_->setHardwarePlatform(hardware);
    if (platform_->isPartial()) platform_->setPlatformFile(hardware->getPlatformFile());
}

void PlatformLoader::attachHardwareEmulationPlatform(OpenArchives& archives) {
    if (platform_->getHardwareEmulationPlatform() != nullptr) return;
    const std::string path = platform_->getHardwareEmuPlatformFile();
    if (path.empty()) {
        attachMergedHardwareEmulationPlatform_(archives);
        return;
    }
    // An emulation archive that does not parse is left out without failing the load, and one that
    // holds no metadata without a word.
    HPLPlatform* const emulation = read_(archives, [&](auto& reader, HPLPlatform&) {
        std::string member;
        return reader.canParse(path, hwMetadataMode_, member) && reader.parseMember(path, member);
    });
    if (emulation != nullptr) platform_->setHardwareEmulationPlatform(emulation);
}

void PlatformLoader::attachMergedHardwareEmulationPlatform_(OpenArchives& archives) {
    const HMAVHardwarePlatform* hardware = platform_->getHardwarePlatform();
    if (hardware == nullptr || hardware->getPlatformFile().empty()) return;
    const std::string path = hardware->getPlatformFile();
    HPLPlatform* const emulation = read_(archives, [&](auto& reader, HPLPlatform&) {
        return reader.parseHwEmuPKA(path, hwMetadataMode_);
    });
    if (emulation == nullptr) return;
    emulation->setIsChildHardwareEmuPlatform(true);
    platform_->setHardwareEmulationPlatform(emulation);
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
    if (!HUTFile::exists(path))
        throw PlatformParseException("the software platform file does not exist");
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
        // A description may name more archives than the process may have open.
        OpenArchives archives;
        attachHardwarePlatform_(partition, archives);
        attachHardwareEmulationPlatform_(partition, archives);
    }
}

void PlatformLoader::attachHardwarePlatform_(HMAVReconfigurablePartition* partition,
                                             OpenArchives& archives) {
    if (partition->getHardwarePlatform() != nullptr) return;
    HPLPlatform* const hardware =
        readArchive_(partition->getHardwarePlatformFile(), archives, HARDWARE_FAILED);
    partition->setHardwarePlatform(hardware);
    if (platform_->getDefaultRPId() == partition->getID()) {
        platform_->setDefaultRPHardwarePlatform(hardware);
    }
}

void PlatformLoader::attachHardwareEmulationPlatform_(HMAVReconfigurablePartition* partition,
                                                      OpenArchives& archives) {
    const std::string path = partition->getHardwareEmulationPlatformFile();
    if (partition->getHardwareEmulationPlatform() != nullptr || path.empty()) return;
    HPLPlatform* const emulation = readArchive_(path, archives, EMULATION_FAILED);
    partition->setHardwareEmulationPlatform(emulation);
    if (platform_->getDefaultRPId() == partition->getID()) {
        platform_->setDefaultRPHardwareEmulationPlatform(emulation);
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
