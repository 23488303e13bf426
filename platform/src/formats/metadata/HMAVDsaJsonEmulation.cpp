// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <utility>

#include "archive/OpenArchives.h"
#include "formats/emulation/EmulationSource.h"
#include "formats/metadata/HMAVDsaJsonReaderImpl.h"
#include "mav_platform/HMAVEmulationExtMetaJsonReader.h"
#include "mav_platform/HMAVEmulationJsonReader.h"
#include "mav_platform/HMAVEmulationXMLReader.h"
#include "mav_platform/HPLPlatform.h"

using Types = HMAVPfmFileTypes;

void HMAVDsaJsonReaderImpl::readEmulations() {
    auto emulations = std::make_unique<HMAVEmulations>();
    bool any = readEmulationMember_(*emulations);
    const std::string extension = presentMember_(Types::EXT_META_JSON);
    if (!extension.empty()) {
        any = HMAVEmulationExtMetaJsonReader(emulations.get())
                  .parseFromDsa(archives_->open(platform_->getPlatformFile()), extension,
                                emulations.get()) ||
              any;
    }
    if (!any) return;
    if (emulations->hasFileOfType("EMU_HPFM")) platform_->setSupportsHWEmulation(true);
    if (emulations->hasFileOfType("TOP_BD")) platform_->setSupportsTwoHwEmuBd(true);
    platform_->setEmulations(std::move(emulations));
}

bool HMAVDsaJsonReaderImpl::readEmulationMember_(HMAVEmulations& emulations) {
    const std::string json = presentMember_(Types::EMU_JSON);
    const std::string xml = json.empty() ? presentMember_(Types::EMU_XML) : std::string();
    if (json.empty() && xml.empty()) return false;
    const mav_host::ZipArchive& archive = archives_->open(platform_->getPlatformFile());
    if (!json.empty()) {
        return HMAVEmulationJsonReader(&emulations).parseFromDsa(archive, json, &emulations);
    }
    return HMAVEmulationXMLReader(xml, &emulations).parseFromDsa(archive, xml, &emulations);
}

/// The first file of that type that the archive holds, as a reader takes it; else empty.
std::string HMAVDsaJsonReaderImpl::presentMember_(HMAVPfmFileTypes::FileType type) const {
    const std::string wanted = Types::toString(type);
    for (const HPLFile* file : platform_->getFiles()) {
        if (file->getType() != wanted || file->getName().empty()) continue;
        const std::string normalized = mav_platform::emulation::normalizedMember(file->getName());
        const std::string member = placed_(normalized);
        if (!archives_->open(platform_->getPlatformFile()).contains(member)) continue;
        // Readers normalise for themselves, and twice would be once too often.
        return member == normalized ? file->getName() : member;
    }
    return {};
}
