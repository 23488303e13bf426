// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmulationXMLReader.h"

#include "formats/emulation/EmulationSource.h"
#include "formats/emulation/MAVEmulationLMX.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVEmulations.h"

namespace emulation = mav_platform::emulation;
namespace lmx = mav_platform::lmx;

namespace {

void report(const std::string& file, const mav_host::xml::BindingError& error) {
    mav_host::report(mav_host::messages::EMULATION_NOT_VALID, file, std::to_string(error.line()));
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
