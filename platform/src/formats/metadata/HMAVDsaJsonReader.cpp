// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDsaJsonReader.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <exception>
#include <optional>
#include <ostream>
#include <utility>

#include "formats/Fields.h"
#include "formats/metadata/HMAVDsaJsonReaderImpl.h"
#include "json/Document.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_host/xml/Binding.h"
#include "mav_platform/HMAVHpfmReader.h"
#include "mav_platform/HPLPlatform.h"

namespace {

using Mode = HMAVDsaJsonReader::Mode;

}  // namespace

HMAVDsaJsonReaderImpl::HMAVDsaJsonReaderImpl(HPLPlatform* platform,
                                             mav_platform::OpenArchives* archives)
    : platform_(platform), archives_(archives != nullptr ? archives : &own_) {}

bool HMAVDsaJsonReaderImpl::refuse_(const std::string& path, const std::string& text) {
    mav_host::report(mav_host::messages::METADATA_UNUSABLE, path, text);
    errorMsg_ = text;
    return false;
}

bool HMAVDsaJsonReaderImpl::refuseSyntax_(const std::string& path, const std::string& member,
                                          const std::string& text) {
    mav_host::report(mav_host::messages::MEMBER_FAULT, path, member, text);
    errorMsg_ = text;
    return false;
}

bool HMAVDsaJsonReaderImpl::canParse_(const std::string& path, Mode mode,
                                      const std::string& primary, const std::string& alternative,
                                      std::string& member) {
    bool hasPrimary = false;
    bool hasAlternative = false;
    try {
        const mav_host::ZipArchive& archive = archives_->open(path);
        hasPrimary = archive.contains(primary);
        hasAlternative = archive.contains(alternative);
    } catch (const HEXError&) {
        // What cannot be opened holds neither member; whoever reads on reports the reason.
        return false;
    }
    member = hasAlternative ? alternative : primary;
    return mode == Mode::HW_METADATA_PRIMARY_JSON ? hasPrimary : hasPrimary || hasAlternative;
}

bool HMAVDsaJsonReaderImpl::canParse(const std::string& path, Mode mode, std::string& member) {
    if (!HUTPathUtils::exists(path)) {
        mav_host::report(mav_host::messages::NO_SUCH_ARCHIVE, path);
        return false;
    }
    if (mode == Mode::HW_METADATA_XML) return false;
    platform_->setPlatformFile(archives_->canonicalName(path));
    return canParse_(path, mode, platform_->getJsonFileName(), platform_->getAltJsonFileName(),
                     member);
}

bool HMAVDsaJsonReaderImpl::canParseHwEmu(const std::string& path, Mode mode, std::string& member) {
    if (!HUTPathUtils::exists(path)) {
        mav_host::report(mav_host::messages::NO_SUCH_ARCHIVE, path);
        return false;
    }
    if (mode == Mode::HW_METADATA_XML) return false;
    platform_->setPlatformFile(archives_->canonicalName(path));
    return canParse_(path, mode, platform_->getHwEmuJsonFileName(),
                     platform_->getAltHwEmuJsonFileName(), member);
}

bool HMAVDsaJsonReaderImpl::parseDSA(const std::string& path, Mode mode) {
    std::string member;
    if (canParse(path, mode, member)) return parseMember(path, member);
    reportDeclined_(path, mode);
    return false;
}

bool HMAVDsaJsonReaderImpl::parseHwEmuPKA(const std::string& path, Mode mode) {
    std::string member;
    merged_ = true;
    const bool parsed = canParseHwEmu(path, mode, member) && parseMember(path, member);
    merged_ = false;
    return parsed;
}

void HMAVDsaJsonReaderImpl::reportDeclined_(const std::string& path, Mode mode) {
    if (!HUTPathUtils::exists(path)) return;  // canParse has reported it
    if (mode == Mode::HW_METADATA_XML) {
        refuse_(path, "the metadata mode asks for device support XML, which is not read");
        return;
    }
    try {
        archives_->open(path);
        refuse_(path, "no JSON metadata member ('" + platform_->getAltJsonFileName() + "' or '" +
                          platform_->getJsonFileName() +
                          "') that the metadata mode admits is in the archive");
    } catch (const HEXError& error) {
        refuse_(path, error.what());
    }
}

bool HMAVDsaJsonReaderImpl::parseMember(const std::string& path, const std::string& member) {
    std::string text;
    try {
        text = archives_->open(path).read(member, HUTZip::MAX_METADATA_SIZE);
    } catch (const HEXError& error) {
        return refuse_(path, error.what());
    }
    return parseDocument_(std::move(text), path, member, true);
}

bool HMAVDsaJsonReaderImpl::parseFile(const std::string& path) {
    bool larger = false;
    std::optional<std::string> text =
        HUTFileUtils::tryRead(path, HUTZip::MAX_METADATA_SIZE, larger);
    if (larger) {
        return refuse_(path, "the file is larger than " +
                                 std::to_string(HUTZip::MAX_METADATA_SIZE) +
                                 " bytes, the most that metadata may have");
    }
    if (!text) return refuse_(path, "the file cannot be read; name a readable file");
    return parseDocument_(*std::move(text), path, HUTPathUtils::stem(path));
}

bool HMAVDsaJsonReaderImpl::parseJsonString(const std::string& text) {
    return parseDocument_(text, "text", platform_->getJsonFileName());
}

bool HMAVDsaJsonReaderImpl::parseDocument_(std::string text, const std::string& path,
                                           const std::string& member, bool inArchive) {
    namespace json_parser = boost::property_tree::json_parser;
    if (text.empty()) return refuseSyntax_(path, member, "the member is empty");
    Trail trail;
    try {
        const auto document = mav_platform::json::Document::fromBytes(std::move(text));
        mav_platform::metadata::requireObject(document.root());
        parseRoot_(*platform_, document.root(), trail);
        if (inArchive) readEmulations();
        if (auto hpfm = inArchive ? getHpfmStr() : std::nullopt) {
            HMAVHpfmReader reader(std::move(*hpfm), platform_);
            reader.parseBusInterfaces();
            reader.parseNocConnectivity();
        }
        parseRest_(*platform_, document.root(), trail);
    } catch (const json_parser::json_parser_error& error) {
        return refuseSyntax_(path, member,
                             "line " + std::to_string(error.line()) + ": " + error.message());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        const std::string place = trail.text();
        return refuse_(path, (member.empty() ? "" : member + ": ") +
                                 (place.empty() ? "" : "'" + place + "': ") + error.what());
    }
    platform_->setMetadataRead(true);
    return true;
}

std::string HMAVDsaJsonReaderImpl::getHpfmFile() const {
    const std::string member = platform_->getFile(HMAVPfmFileTypes::HPFM);
    return member.empty() ? member : placed_(member);
}

/// The member's name in the archive.
std::string HMAVDsaJsonReaderImpl::placed_(const std::string& member) const {
    return merged_ ? HMAVHardwarePlatform::hwEmuMemberName(member) : platform_->memberName(member);
}

std::optional<std::string> HMAVDsaJsonReaderImpl::getHpfmStr() {
    const std::string member = getHpfmFile();
    if (member.empty()) return std::nullopt;
    const std::string path = platform_->getPlatformFile();
    try {
        const mav_host::ZipArchive& archive = archives_->open(path);
        if (!archive.contains(member)) return std::nullopt;
        return archive.read(member, mav_host::xml::Limits().bytes);
    } catch (const HEXError& error) {
        mav_host::console() << "Error parsing hardware platform stream from DSA: " << error.what()
                            << "\n"
                            << std::flush;
        mav_host::report(mav_host::messages::HPFM_MEMBER_NOT_VALID);
        return std::nullopt;
    }
}

bool HMAVDsaJsonReaderImpl::readHpfmBusInterfaces(std::string text) {
    return HMAVHpfmReader(std::move(text), platform_).parseBusInterfaces();
}

bool HMAVDsaJsonReaderImpl::readHpfmNocConnectivity(std::string text) {
    return HMAVHpfmReader(std::move(text), platform_).parseNocConnectivity();
}

HMAVDsaJsonReader::HMAVDsaJsonReader(HPLPlatform* platform, mav_platform::OpenArchives* archives)
    : impl_(std::make_unique<HMAVDsaJsonReaderImpl>(platform, archives)) {}

HMAVDsaJsonReader::~HMAVDsaJsonReader() = default;

bool HMAVDsaJsonReader::canParse(const std::string& path, Mode mode, std::string& member) {
    return impl_->canParse(path, mode, member);
}

bool HMAVDsaJsonReader::canParseHwEmu(const std::string& path, Mode mode, std::string& member) {
    return impl_->canParseHwEmu(path, mode, member);
}

bool HMAVDsaJsonReader::parseDSA(const std::string& path, Mode mode) {
    return impl_->parseDSA(path, mode);
}

bool HMAVDsaJsonReader::parseHwEmuPKA(const std::string& path, Mode mode) {
    return impl_->parseHwEmuPKA(path, mode);
}

bool HMAVDsaJsonReader::parseMember(const std::string& path, const std::string& member) {
    return impl_->parseMember(path, member);
}

const std::string& HMAVDsaJsonReader::getErrorMsg() const {
    return impl_->getErrorMsg();
}

bool HMAVDsaJsonReader::parseFile(const std::string& path) {
    return impl_->parseFile(path);
}

bool HMAVDsaJsonReader::parseJsonString(const std::string& text) {
    return impl_->parseJsonString(text);
}

std::string HMAVDsaJsonReader::getHpfmFile() const {
    return impl_->getHpfmFile();
}

std::string HMAVDsaJsonReader::getHpfmStr() {
    return impl_->getHpfmStr().value_or("");
}

bool HMAVDsaJsonReader::readHpfmBusInterfaces(std::string text) {
    return impl_->readHpfmBusInterfaces(std::move(text));
}

bool HMAVDsaJsonReader::readHpfmNocConnectivity(std::string text) {
    return impl_->readHpfmNocConnectivity(std::move(text));
}
