// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmulationXMLReader.h"

#include <ostream>

#include "formats/emulation/EmulationSource.h"
#include "formats/emulation/MAVEmulationLMX.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/Host.h"
#include "mav_platform/HMAVEmulations.h"

namespace emulation = mav_platform::emulation;
namespace lmx = mav_platform::lmx;

namespace {

void report(const std::string& file, const mav_host::xml::BindingError& error) {
    const std::string line = std::to_string(error.line());
    mav_host::console() << "Error parsing emulation metadata file: " << file
                        << " Line number:" << line << ". " << error.what() << "\n"
                        << std::flush;
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-24@%s%d", {file, line});
}

}  // namespace

bool HMAVEmulationXMLReader::parseXml() {
    try {
        emulation::fill(lmx::emulationFormat().parseFile(path_), *emulations_);
        return true;
    } catch (const mav_host::xml::BindingError& error) {
        report(path_, error);
        return false;
    }
}

bool HMAVEmulationXMLReader::parseFromDsa(const std::string& archive, const std::string& member,
                                          HMAVEmulations* emulations) {
    const emulation::Place place{archive, emulation::normalizedMember(member)};
    emulations_ = emulations;
    const auto text = emulation::readMember(place);
    return text && parse_(*text, place);
}

bool HMAVEmulationXMLReader::parseFromDsa(const mav_host::ZipArchive& archive,
                                          const std::string& member, HMAVEmulations* emulations) {
    const emulation::Place place{archive.path(), emulation::normalizedMember(member)};
    emulations_ = emulations;
    const auto text = emulation::readMember(archive, place);
    return text && parse_(*text, place);
}

bool HMAVEmulationXMLReader::parse_(const std::string& text, const emulation::Place& place) const {
    try {
        emulation::fill(lmx::emulationFormat().parseText(text), *emulations_);
        return true;
    } catch (const mav_host::xml::BindingError& error) {
        report(place.text(), error);
        return false;
    }
}
