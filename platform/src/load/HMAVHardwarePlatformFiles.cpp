// SPDX-License-Identifier: Apache-2.0
#include <exception>

#include "archive/metadataFiles.h"
#include "mav_host/HEXError.h"
#include "mav_host/HHSMHwManager.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/xml/Binding.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/PlatformDpeprjFileExtractor.h"
#include "mav_platform/PlatformFileExtractor.h"

namespace {

constexpr const char* REFUSED = "HMAVHardwarePlatform::archiveFile() - ";

/// Where a member lands below `dir`; empty for one that is no file.
std::string destinationOf(const std::string& member, const std::string& dir) {
    const std::string leaf = member.substr(member.rfind('/') + 1);
    return leaf.empty() ? "" : dir + "/" + leaf;
}

/// Extracts the member of the platform's archive; answers the file made, empty when there is none.
std::string extractOwn(const PlatformFileExtractor& extractor, const std::string& member,
                       const std::string& dir) {
    const std::string path = destinationOf(member, dir);
    return !path.empty() && extractor.extract(member, path) ? path : "";
}

/// The same for a member of the array-engine project.
std::string extractNested(const HMAVHardwarePlatform& platform, const std::string& member,
                          const std::string& dir) {
    const std::string path = destinationOf(member, dir);
    return PlatformDpeprjFileExtractor(platform).extractFile(member, path) ? path : "";
}

/// The file that the platform lists under `type`, else the member of the array-engine project.
std::string extractListedOrNested(const HMAVHardwarePlatform& platform, const char* type,
                                  const std::string& member, const std::string& dir) {
    std::string path =
        extractOwn(PlatformFileExtractor(platform), platform.getFile(std::string(type)), dir);
    return path.empty() ? extractNested(platform, member, dir) : path;
}

/// What is being handled, if anything, goes along nested.
[[noreturn]] void refuseMember(const std::string& archive) {
    std::throw_with_nested(
        HEXAlgException(REFUSED + ("Could not open file for streaming: " + archive)));
}

std::string ifInArchive(const std::string& archive, const std::string& member) {
    return HUTZip::containsFile(archive, member) ? member : "";
}

}  // namespace

std::string HMAVHardwarePlatform::getHwEmuJsonFileNameIfExist() const {
    return ifInArchive(platformFile_, getHwEmuJsonFileName());
}

std::string HMAVHardwarePlatform::getAltHwEmuJsonFileNameIfExist() const {
    return ifInArchive(platformFile_, getAltHwEmuJsonFileName());
}

bool HMAVHardwarePlatform::hasHardwareDef_() const {
    return HUTZip::containsFile(platformFile_, "hwdef.xml") ||
           HUTZip::containsFile(platformFile_, "sysdef.xml");
}

std::string HMAVHardwarePlatform::getHwDbName() {
    if (!hwDb_ && (platformFile_.empty() || !hasHardwareDef_() || !createHwDb())) return "";
    return hwDb_->getName();
}

bool HMAVHardwarePlatform::createHwDb() {
    return createHwDb(platformFile_);
}

bool HMAVHardwarePlatform::createHwDb(const std::string& archive) {
    hwDb_ = HHSMHwManager::get().open(archive, "fpga0");
    return hwDb_ != nullptr;
}

std::string HPLPlatform::getHpfmString() const {
    const std::string member = getFile(HMAVPfmFileTypes::HPFM);
    if (member.empty()) return "";
    try {
        return mav_host::ZipArchive(getPlatformFile())
            .read(memberName(member), mav_host::xml::Limits().bytes);
    } catch (const HEXError&) {
        return "";
    }
}

std::string HMAVHardwarePlatform::extractTypedFile_(const char* type, const std::string& dir,
                                                    bool rewriteHpfm) const {
    return extractOwn(PlatformFileExtractor(*this, rewriteHpfm), getFile(std::string(type)), dir);
}

std::string HMAVHardwarePlatform::extractHPFMFile(const std::string& dir, bool rewrite) const {
    return extractTypedFile_("HPFM", dir, rewrite);
}

std::string HMAVHardwarePlatform::extractNTSFile(const std::string& dir) const {
    return extractTypedFile_("NOC_TRAFFIC", dir);
}

std::string HMAVHardwarePlatform::extractNCRFile(const std::string& dir) const {
    return extractTypedFile_("NOC_SOLUTION", dir);
}

std::string HMAVHardwarePlatform::extractDrBdFile(const std::string& dir) const {
    return extractTypedFile_("DR_BD", dir);
}

std::string HMAVHardwarePlatform::extractDPEPRJFile(const std::string& dir) const {
    const std::string path = extractTypedFile_("DPEPRJ", dir);
    return path.empty() ? extractTypedFile_("ME_ARCHIVE", dir) : path;
}

std::string HMAVHardwarePlatform::extractINTFCSTFile(const std::string& dir) const {
    return extractListedOrNested(*this, "ME_CONSTRAINT",
                                 "dpearchive/corvel/dpe_interface.dpeintfcst", dir);
}

std::string HMAVHardwarePlatform::extractINTFSOLFile(const std::string& dir) const {
    return extractNested(*this, "dpearchive/corvel/dpe_interface.dpeintfsol", dir);
}

std::string HMAVHardwarePlatform::extractDPECSTFile(const std::string& dir) const {
    return extractNested(*this, "dpearchive/corvel/dpe_constraints.dpecst", dir);
}

std::string HMAVHardwarePlatform::extractDPEMetadataFile(const std::string& dir) const {
    return extractNested(*this, "dpearchive/corvel/dpeprj_meta_data.json", dir);
}

std::string HMAVHardwarePlatform::extractLARCHFile(const std::string& dir) const {
    return extractListedOrNested(*this, "ME_LOGICAL_ARCH",
                                 "dpearchive/corvel/logical_arch_dpe.larch", dir);
}

void HMAVHardwarePlatform::archiveFile(const std::string& type, const std::string& name,
                                       const std::string& source, mav_host::Resign resign) {
    const std::string refused = REFUSED;
    if (platformFile_.empty()) throw HEXAlgException(refused + "pkaFile is not set");
    if (!HUTFile::isFile(platformFile_)) throw HEXAlgException(refused + "pkaFile does not exist");
    if (getJsonFileName().empty()) throw HEXAlgException(refused + "jsonFile is not set");
    auto* const platform = dynamic_cast<HPLPlatform*>(this);
    if (platform == nullptr) throw HEXAlgException(refused + "Could not cast this to HPLPlatform");
    if (!HUTFile::isFile(source) || !HUTFile::isReadable(source)) {
        throw HEXAlgException(refused + "Could not open file for reading: " + source);
    }
    try {
        HUTZip::checkMemberName(name, platformFile_);
    } catch (const HEXError&) {
        refuseMember(platformFile_);
    }
    const std::string member = memberName(name);
    checkNoMetadata_(member, name);
    HPLPlatform::validateFileType(type);
    addToArchive_(type, name, {member, source, ""}, resign);
    for (const HPLFile* file : platform->getFiles()) {
        if (file->getType() == type && file->getName() == name) return;
    }
    platform->addFile(type, name);
}

void HMAVHardwarePlatform::addToArchive_(const std::string& type, const std::string& name,
                                         const HUTZip::Source& source,
                                         mav_host::Resign resign) const {
    bool opened = false;
    try {
        const auto sources = [&](const mav_host::ZipArchive* archive) {
            opened = archive != nullptr;
            if (!opened) refuseMember(platformFile_);
            HSTVector<HUTZip::Source> all = listInMetadata_(*archive, type, name);
            all.push_back(source);
            return all;
        };
        HUTZip::updateWithDigest(platformFile_, sources, resign);
    } catch (const HEXError&) {
        if (opened) throw;
        refuseMember(platformFile_);
    }
}

void HMAVHardwarePlatform::checkNoMetadata_(const std::string& member,
                                            const std::string& name) const {
    for (const std::string& metadata :
         {getJsonFileName(), getAltJsonFileName(), getHwEmuJsonFileName(),
          getAltHwEmuJsonFileName(), HVMAArchive().getJsonFileName()}) {
        if (metadata == member) {
            throw HEXAlgException("'" + name +
                                  "' is the name of the metadata itself; choose another one");
        }
    }
}

HSTVector<HUTZip::Source> HMAVHardwarePlatform::listInMetadata_(const mav_host::ZipArchive& archive,
                                                                const std::string& type,
                                                                const std::string& name) const {
    const bool child = childHardwareEmuPlatform_;
    HSTVector<HUTZip::Source> sources;
    for (const std::string& metadata : {child ? getHwEmuJsonFileName() : getJsonFileName(),
                                        child ? getAltHwEmuJsonFileName() : getAltJsonFileName()}) {
        if (!archive.contains(metadata)) continue;
        sources.push_back({metadata, "",
                           mav_platform::withListedFile(
                               archive.read(metadata, HUTZip::MAX_METADATA_SIZE), type, name)});
    }
    if (sources.empty()) {
        throw HEXAlgException("'" + platformFile_ + "' has no JSON metadata to list the file in");
    }
    HVMAArchive index(platformFile_);
    if (child || !archive.contains(index.getJsonFileName())) return sources;
    if (!index.parse(archive)) {
        throw HEXAlgException("The index '" + index.getJsonFileName() + "' of '" + platformFile_ +
                              "' cannot be read");
    }
    index.registerFile(type, name);
    sources.push_back({index.getJsonFileName(), "", index.toJSONString()});
    return sources;
}
