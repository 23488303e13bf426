// SPDX-License-Identifier: Apache-2.0
#include "formats/emulation/EmulationSource.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <exception>
#include <new>
#include <ostream>
#include <utility>

#include "formats/emulation/MAVEmulationLMX.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_platform/HMAVEmulations.h"

namespace mav_platform::emulation {
namespace {

void report(std::uint32_t mask, const char* id, const HSTVector<std::string>& arguments) {
    ComMsgMgr::sendMsg(1, "platform", mask, id, arguments);
}

void reportUnreadable(const Place& place, const char* reason) {
    mav_host::console() << "Error reading emulation metadata: " << reason << "\n" << std::flush;
    report(ComMsgMgr::ERROR, "@74-34@%s%s", {place.path, place.member});
}

void reportUnusable(const Place& place, const std::string& text) {
    report(ComMsgMgr::ERROR, "@74-63@%s%s",
           {place.path, place.member.empty() ? text : place.member + ": " + text});
}

}  // namespace

std::string normalizedMember(const std::string& member) {
    if (member.size() < 2 || member[1] != '/') return member;
    const std::size_t rest = member.find_first_not_of('/', 1);
    return rest == std::string::npos ? "" : member.substr(rest);
}

std::optional<std::string> readMember(const Place& place) {
    try {
        return readMember(mav_host::ZipArchive(place.path), place);
    } catch (const HEXError& error) {
        reportUnreadable(place, error.what());
        return std::nullopt;
    }
}

std::optional<std::string> readMember(const mav_host::ZipArchive& archive, const Place& place) {
    try {
        return archive.read(place.member, HUTZip::MAX_METADATA_SIZE);
    } catch (const HEXError& error) {
        reportUnreadable(place, error.what());
        return std::nullopt;
    }
}

std::optional<std::string> readFile(const std::string& path) {
    try {
        return HUTFileUtils::readWhole(path, HUTZip::MAX_METADATA_SIZE);
    } catch (const HEXError& error) {
        reportUnusable({path, {}}, error.what());
        return std::nullopt;
    }
}

bool readJson(std::string text, const Place& place, const ReadRoot& read) {
    if (!HI18N_isAscii(text)) text = HI18N_convertToUTF8(text);
    metadata::Trail trail;
    try {
        const json::Document document(std::move(text));
        metadata::requireObject(document.root());
        read(document.root(), trail);
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        const std::string fault = "line " + std::to_string(error.line()) + ": " + error.message();
        if (place.member.empty()) {
            reportUnusable(place, fault);
        } else {
            report(ComMsgMgr::ERROR, "@74-64@%s%s%s", {place.path, place.member, fault});
        }
        return false;
    } catch (const metadata::ConversionError& error) {
        const std::string key = trail.text();
        reportUnusable(place, (key.empty() ? "" : "'" + key + "': ") + error.what());
        return false;
    }
    for (const std::string& key : trail.duplicates()) {
        report(ComMsgMgr::WARNING, "@74-64@%s%s%s",
               {place.path, place.member,
                "the key '" + key + "' stands more than once; the first one counts"});
    }
    return true;
}

void fill(lmx::EmulationMetadata document, HMAVEmulations& emulations) {
    if (document.pfmMetadataVersion) {
        emulations.setPfmMetadataVersion(std::move(*document.pfmMetadataVersion));
    }
    if (document.versionMajor) emulations.setVersionMajor(*document.versionMajor);
    if (document.versionMinor) emulations.setVersionMinor(*document.versionMinor);
    for (lmx::Emulation& read : document.emulations.emulations) {
        HMAVEmulation& emulation = *emulations.createEmulation();
        emulation.setName(std::move(read.name));
        for (lmx::EmulationFile& file : read.files.files) {
            emulation.createFile(std::move(file.type), std::move(file.name))
                ->setInstPath(std::move(file.instPath));
        }
    }
}

}  // namespace mav_platform::emulation
