// SPDX-License-Identifier: Apache-2.0
#include "formats/metadata/HMAVDsaJsonReader.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <exception>
#include <fstream>
#include <utility>

#include "archive/OpenArchives.h"
#include "formats/metadata/Fields.h"
#include "json/Document.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVHpfmReader.h"
#include "mav_platform/HPLPlatform.h"

namespace {

using Mode = HMAVDsaJsonReader::Mode;

void reportParse(const std::string& path, const std::string& text) {
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-63@%s%s", {path, text});
}

void reportMember(std::uint32_t mask, const std::string& path, const std::string& member,
                  const std::string& text) {
    ComMsgMgr::sendMsg(1, "platform", mask, "@74-64@%s%s%s", {path, member, text});
}

}  // namespace

HMAVDsaJsonReader::HMAVDsaJsonReader(HPLPlatform* platform, mav_platform::OpenArchives* archives)
    : platform_(platform), archives_(archives) {
    if (archives_ != nullptr) return;
    own_ = std::make_unique<mav_platform::OpenArchives>();
    archives_ = own_.get();
}

HMAVDsaJsonReader::~HMAVDsaJsonReader() = default;

bool HMAVDsaJsonReader::canParse_(const std::string& path, Mode mode, const std::string& primary,
                                  const std::string& alternative, std::string& member) {
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

bool HMAVDsaJsonReader::canParse(const std::string& path, Mode mode, std::string& member) {
    if (!HUTPathUtils::exists(path)) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-66@%s", {path});
        return false;
    }
    if (mode == Mode::HW_METADATA_XML) return false;
    platform_->setPlatformFile(archives_->canonicalName(path));
    return canParse_(path, mode, platform_->getJsonFileName(), platform_->getAltJsonFileName(),
                     member);
}

bool HMAVDsaJsonReader::canParseHwEmu(const std::string& path, Mode mode, std::string& member) {
    if (!HUTPathUtils::exists(path)) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-66@%s", {path});
        return false;
    }
    if (mode == Mode::HW_METADATA_XML) return false;
    platform_->setPlatformFile(archives_->canonicalName(path));
    return canParse_(path, mode, platform_->getHwEmuJsonFileName(),
                     platform_->getAltHwEmuJsonFileName(), member);
}

bool HMAVDsaJsonReader::parseDSA(const std::string& path, Mode mode) {
    std::string member;
    if (canParse(path, mode, member)) return parseMember(path, member);
    reportDeclined_(path, mode);
    return false;
}

bool HMAVDsaJsonReader::parseHwEmuPKA(const std::string& path, Mode mode) {
    std::string member;
    merged_ = true;
    const bool parsed = canParseHwEmu(path, mode, member) && parseMember(path, member);
    merged_ = false;
    return parsed;
}

void HMAVDsaJsonReader::reportDeclined_(const std::string& path, Mode mode) {
    if (!HUTPathUtils::exists(path)) return;  // canParse has reported it
    if (mode == Mode::HW_METADATA_XML) {
        reportParse(path, "the metadata mode asks for device support XML, which is not read");
        return;
    }
    try {
        archives_->open(path);
        reportParse(path, "no JSON metadata member ('" + platform_->getAltJsonFileName() +
                              "' or '" + platform_->getJsonFileName() +
                              "') that the metadata mode admits is in the archive");
    } catch (const HEXError& error) {
        reportParse(path, error.what());
    }
}

bool HMAVDsaJsonReader::parseMember(const std::string& path, const std::string& member) {
    std::string text;
    try {
        text = archives_->open(path).read(member, HUTZip::MAX_METADATA_SIZE);
    } catch (const HEXError& error) {
        reportMember(ComMsgMgr::ERROR, path, member, error.what());
        return false;
    }
    return parseDocument_(std::move(text), path, member, true);
}

bool HMAVDsaJsonReader::parseFile(const std::string& path) {
    // Asked before opening, which would wait for a writer of a named pipe.
    std::ifstream file;
    if (HUTFile::isFile(path)) file.open(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.is_open() ? std::streamoff(file.tellg()) : -1;
    if (size < 0) {
        reportParse(path, "the file cannot be read; name a readable file");
        return false;
    }
    if (static_cast<std::uint64_t>(size) > HUTZip::MAX_METADATA_SIZE) {
        reportParse(path, "the file is larger than " + std::to_string(HUTZip::MAX_METADATA_SIZE) +
                              " bytes, the most that metadata may have");
        return false;
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    if (!file.seekg(0).read(text.data(), size)) {
        reportParse(path, "the file cannot be read to its end");
        return false;
    }
    return parseDocument_(std::move(text), path, HUTPathUtils::stem(path));
}

bool HMAVDsaJsonReader::parseJsonString(const std::string& text) {
    return parseDocument_(text, "text", platform_->getJsonFileName());
}

bool HMAVDsaJsonReader::parseDocument_(std::string text, const std::string& path,
                                       const std::string& member, bool inArchive) {
    namespace json_parser = boost::property_tree::json_parser;
    if (text.empty()) {
        reportMember(ComMsgMgr::ERROR, path, member, "the member is empty");
        return false;
    }
    if (!HI18N_isAscii(text)) text = HI18N_convertToUTF8(text);
    Trail trail;
    try {
        const mav_platform::json::Document document(std::move(text));
        mav_platform::metadata::requireObject(document.root());
        parseRoot_(*platform_, document.root(), trail);
        if (inArchive) readEmulations();
        if (const auto hpfm = inArchive ? getHpfmStr() : std::nullopt) {
            readHpfmBusInterfaces(*hpfm);
            readHpfmNocConnectivity(*hpfm);
        }
        parseRest_(*platform_, document.root(), trail);
    } catch (const json_parser::json_parser_error& error) {
        reportMember(ComMsgMgr::ERROR, path, member,
                     "line " + std::to_string(error.line()) + ": " + error.message());
        return false;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        const std::string place = trail.text();
        reportParse(path,
                    member + ": " + (place.empty() ? "" : "'" + place + "': ") + error.what());
        return false;
    }
    platform_->setMetadataRead(true);
    for (const std::string& key : trail.duplicates()) {
        reportMember(ComMsgMgr::WARNING, path, member,
                     "the key '" + key + "' stands more than once; the first one counts");
    }
    for (const std::string& place : trail.fallbacks()) {
        reportMember(ComMsgMgr::WARNING, path, member,
                     "the value of '" + place + "' is no unsigned number that fits; 0 counts");
    }
    return true;
}

std::string HMAVDsaJsonReader::getHpfmFile() const {
    const std::string member = platform_->getFile(HMAVPfmFileTypes::HPFM);
    return member.empty() ? member : placed_(member);
}

/// The member's name in the archive.
std::string HMAVDsaJsonReader::placed_(const std::string& member) const {
    if (!merged_ && !platform_->isChildHardwareEmuPlatform()) return member;
    return HMAVHardwarePlatform::getHwEmuDir() + "/" + member;
}

std::optional<std::string> HMAVDsaJsonReader::getHpfmStr() {
    const std::string member = getHpfmFile();
    if (member.empty()) return std::nullopt;
    const std::string path = platform_->getPlatformFile();
    try {
        const mav_host::ZipArchive& archive = archives_->open(path);
        if (!archive.contains(member)) return std::nullopt;
        return archive.read(member, HUTZip::MAX_METADATA_SIZE);
    } catch (const HEXError& error) {
        reportMember(ComMsgMgr::ERROR, path, member, error.what());
        return std::nullopt;
    }
}

/// Both questions about one text are answered by one reader, which binds it once.
HMAVHpfmReader& HMAVDsaJsonReader::hpfmReader_(const std::string& text) {
    if (!hpfm_ || hpfmText_ != text) {
        hpfm_ = std::make_unique<HMAVHpfmReader>(text, platform_);
        hpfmText_ = text;
    }
    return *hpfm_;
}

void HMAVDsaJsonReader::readHpfmBusInterfaces(const std::string& text) {
    hpfmReader_(text).parseBusInterfaces();
}

void HMAVDsaJsonReader::readHpfmNocConnectivity(const std::string& text) {
    hpfmReader_(text).parseNocConnectivity();
}
