// SPDX-License-Identifier: Apache-2.0
#include "formats/emulation/MAVEmulationLMX.h"

namespace mav_platform::lmx {
namespace {

using mav_host::xml::Format;
using mav_host::xml::Items;
using mav_host::xml::Names;
using mav_host::xml::Need;

Items<EmulationMetadata> emulationMetadata() {
    Items<EmulationFile> file;
    file.line(&EmulationFile::line)
        .column(&EmulationFile::column)
        .attribute("Type", &EmulationFile::type, Need::Required)
        .attribute("Name", &EmulationFile::name, Need::Required)
        .attribute("InstPath", &EmulationFile::instPath);
    Items<EmulationFiles> files;
    files.element("File", &EmulationFiles::files, file);
    Items<Emulation> emulation;
    emulation.line(&Emulation::line)
        .column(&Emulation::column)
        .attribute("Name", &Emulation::name)
        .element("Files", &Emulation::files, files, Need::Required);
    Items<EmulationList> emulations;
    emulations.element("Emulation", &EmulationList::emulations, emulation);
    Items<EmulationMetadata> root;
    root.either("VersionMajor", &EmulationMetadata::versionMajor)
        .either("VersionMinor", &EmulationMetadata::versionMinor)
        .element("Emulations", &EmulationMetadata::emulations, emulations, Need::Required);
    return root;
}

}  // namespace

const Format<EmulationMetadata>& emulationFormat() {
    static const Format<EmulationMetadata> format("", emulationMetadata(), Names::WithoutPrefix);
    return format;
}

}  // namespace mav_platform::lmx
