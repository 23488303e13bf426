// SPDX-License-Identifier: Apache-2.0
#include "formats/emulation/EmulationSource.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <utility>

#include "formats/emulation/MAVEmulationLMX.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_host/xml/Binding.h"
#include "mav_platform/HMAVEmulations.h"

namespace mav_platform::emulation {

using mav_host::report;
namespace messages = mav_host::messages;

namespace {

void reportUnreadable(const Place& place) {
    report(messages::MEMBER_NOT_OPENED, place.path, place.member);
}

void reportUnusable(const Place& place, const std::string& text) {
    report(messages::METADATA_UNUSABLE, place.path,
           place.member.empty() ? text : place.member + ": " + text);
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
    } catch (const HEXError&) {
        reportUnreadable(place);
        return std::nullopt;
    }
}

std::optional<std::string> readMember(const mav_host::ZipArchive& archive, const Place& place) {
    try {
        return archive.read(place.member, mav_host::xml::Limits().bytes);
    } catch (const HEXError&) {
        reportUnreadable(place);
        return std::nullopt;
    }
}

std::optional<std::string> readFile(const std::string& path) {
    try {
        return HUTFileUtils::readWhole(path, mav_host::xml::Limits().bytes);
    } catch (const HEXError& error) {
        reportUnusable({path, {}}, error.what());
        return std::nullopt;
    }
}

bool readJson(std::string text, const Place& place, const ReadRoot& read) {
    metadata::Trail trail;
    try {
        const auto document = json::Document::fromBytes(std::move(text));
        metadata::requireObject(document.root());
        read(document.root(), trail);
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        const std::string fault = "line " + std::to_string(error.line()) + ": " + error.message();
        if (place.member.empty()) {
            reportUnusable(place, fault);
        } else {
            report(messages::MEMBER_FAULT, place.path, place.member, fault);
        }
        return false;
    } catch (const metadata::ConversionError& error) {
        const std::string key = trail.text();
        reportUnusable(place, (key.empty() ? "" : "'" + key + "': ") + error.what());
        return false;
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
