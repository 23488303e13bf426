// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmulations.h"

#include <algorithm>

const std::string& HMAVEmulations::getEmuDirName() {
    static const std::string NAME = "hw_emu";
    return NAME;
}

const std::string& HMAVEmulations::getEmulationXmlFilename() {
    static const std::string NAME = "hw_emu.xml";
    return NAME;
}

const std::string& HMAVEmulations::getEmulationJsonFilename() {
    static const std::string NAME = "hw_emu.json";
    return NAME;
}

bool HMAVEmulations::hasFileOfType(const std::string& type) const {
    const HSTVector<HMAVEmulation*>& emulations = getEmulations();
    return std::any_of(emulations.begin(), emulations.end(), [&](const HMAVEmulation* emulation) {
        const HSTVector<HMAVEmulationFile*>& files = emulation->getFiles();
        return std::any_of(files.begin(), files.end(),
                           [&](const HMAVEmulationFile* file) { return file->getType() == type; });
    });
}
