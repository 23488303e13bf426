// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDpeHardware.h"

#include <stdexcept>
#include <string_view>

#include "mav_host/HEXError.h"
#include "mav_host/Letters.h"
#include "mav_platform/JSONObjectWriter.h"

using mav_host::equalLetters;

const std::map<HMAVDpeHardware::Arch, std::string>& HMAVDpeHardware::getArchMap() {
    static const std::map<Arch, std::string> NAMES = {
        {NO_DPE, "NO_DPE"}, {DPE_A, "DPE_A"}, {DPE_B, "DPE_B"}, {DPE_C, "DPE_C"},
        {DPE_D, "DPE_D"},   {DPE_E, "DPE_E"}, {DPE_F, "DPE_F"},
    };
    return NAMES;
}

HMAVDpeHardware::Arch HMAVDpeHardware::stringToArch(const std::string& text) {
    std::string name = text;
    if (equalLetters(text, "NONE")) name = "NO_DPE";
    if (equalLetters(text, "DPE")) name = "DPE_A";
    for (const auto& [arch, known] : getArchMap()) {
        if (equalLetters(known, name)) return arch;
    }
    throw HEXAlgException("HMAVDpeHardware::setArch() - Invalid dpe architecture specified: " +
                          name);
}

void HMAVDpeHardware::setArch(const std::string& text) {
    arch_ = stringToArch(text);
}

std::string HMAVDpeHardware::archToString(Arch arch) {
    const auto found = getArchMap().find(arch);
    return found != getArchMap().end() ? found->second : "NO_DPE";
}

std::string HMAVDpeHardware::getNpiBaseAddressAsHex() const {
    throw std::logic_error("basic_string: construction from null is not valid");
}

void HMAVDpeHardware::toJSON(mav_platform::JSONObjectWriter& writer) const {
    const auto rows = [&writer](std::string_view key, int start, int count) {
        writer.addObject(key, [&](mav_platform::JSONObjectWriter& object) {
            object.addKey("start", static_cast<unsigned>(start));
            object.addKey("num", static_cast<unsigned>(count));
        });
    };
    writer.addKey("arch", getArchAsString());
    writer.addKey("npiBaseAddress", npiBaseAddress_);
    writer.addKey("axiBaseAddress", axiBaseAddress_);
    writer.addKey("axiHighAddress", axiHighAddress_);
    rows("shimRows", startShimRow_, numShimRows_);
    rows("coreRows", startCoreRow_, numCoreRows_);
    rows("memRows", startMemRow_, numMemRows_);
    writer.addKey("colDict", colDict_);
    writer.addObject("archMap", [](mav_platform::JSONObjectWriter& object) {
        for (const auto& [arch, name] : getArchMap()) {
            object.addKey(std::to_string(static_cast<int>(arch)), name);
        }
    });
}
