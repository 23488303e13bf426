// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwareFeatureRom.h"

#include <algorithm>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "mav_host/HEXError.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using Name = std::array<char, HMAVHardwareFeatureRom::NAME_SIZE>;

void setName(Name& target, const char (&name)[HMAVHardwareFeatureRom::NAME_SIZE],
             const char* field) {
    const std::string_view text(name, sizeof(name));
    const std::size_t end = text.find('\0');
    if (end == std::string_view::npos) {
        throw HEXDataException(std::string("The ") + field +
                               " specified for the Feature ROM is not a 64 char null terminated "
                               "string: '" +
                               std::string(text) + "'");
    }
    target.fill('\0');
    std::copy_n(text.begin(), end, target.begin());
}

void checkCdmaIndex(unsigned index) {
    if (index < HMAVHardwareFeatureRom::CDMA_COUNT) return;
    throw HEXAlgException(
        "Attempt to set the CDMA Base Address on the DSA XML DOM object using index '" +
        std::to_string(index) + "' which is out of bounds (max is: '" +
        std::to_string(HMAVHardwareFeatureRom::CDMA_COUNT) + "')");
}

/// Lower-case hexadecimal with "0x" and without leading zeros.
std::string hex(std::uint64_t value) {
    char text[19] = "0x";
    return {text, std::to_chars(text + 2, text + sizeof(text), value, 16).ptr};
}

}  // namespace

void HMAVHardwareFeatureRom::setFPGAPartName(const char (&name)[NAME_SIZE]) {
    setName(fpgaPartName_, name, "FPGAPartName");
}

void HMAVHardwareFeatureRom::setVBNVName(const char (&name)[NAME_SIZE]) {
    setName(vbnvName_, name, "VBNVName");
}

std::string HMAVHardwareFeatureRom::getUUID() const {
    boost::uuids::uuid uuid;
    std::copy(uuid_.begin(), uuid_.end(), uuid.begin());
    return boost::uuids::to_string(uuid);
}

void HMAVHardwareFeatureRom::setUUID(const std::string& text) {
    try {
        const boost::uuids::uuid uuid = boost::uuids::string_generator()(text);
        std::copy(uuid.begin(), uuid.end(), uuid_.begin());
    } catch (const std::runtime_error&) {
        throw HEXDataException("Unable to convert string to Feature ROM UUID: '" + text + "'");
    }
}

std::uint64_t HMAVHardwareFeatureRom::getCDMABaseAddress(unsigned index) const {
    checkCdmaIndex(index);
    return cdmaBaseAddress_[index];
}

void HMAVHardwareFeatureRom::setCDMABaseAddress(unsigned index, std::uint64_t value) {
    checkCdmaIndex(index);
    cdmaBaseAddress_[index] = value;
}

void HMAVHardwareFeatureRom::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("majorVersion", majorVersion_);
    writer.addKey("minorVersion", minorVersion_);
    writer.addKey("corvelBuildID", corvelBuildID_);
    writer.addKey("ipBuildID", ipBuildID_);
    writer.addKey("timeSinceEpoch", timeSinceEpoch_);
    writer.addKey("fpgaPartName", fpgaPartName_.data());
    writer.addKey("vbnvName", vbnvName_.data());
    writer.addKey("ddrChannelCount", ddrChannelCount_);
    writer.addKey("ddrChannelSize", ddrChannelSize_);
    writer.addKey("drBaseAddress", hex(drBaseAddress_));
    writer.addObject("featureBitMap", [this](mav_platform::JSONObjectWriter& bits) {
        char name[] = "bit00";
        for (unsigned bit = 0; bit < 32; ++bit) {
            name[3] = static_cast<char>('0' + bit / 10);
            name[4] = static_cast<char>('0' + bit % 10);
            bits.addKey(name, (featureBitMap_ >> bit & 1U) != 0 ? "enabled" : "disabled");
        }
    });
    writer.addKey("uuid", getUUID());
    for (unsigned index = 0; index < CDMA_COUNT; ++index) {
        writer.addKey("cdmaBaseAddress" + std::to_string(index + 1), hex(cdmaBaseAddress_[index]));
    }
    if (maxTempLimit_) writer.addKey("maxTempLimit", *maxTempLimit_);
    if (maxPowerLimit_) writer.addKey("maxPowerLimit", *maxPowerLimit_);
}
