// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstring>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVHardwareFeatureRom.h"
#include "support/Doubles.h"
#include "support/Json.h"

namespace {

using Rom = HMAVHardwareFeatureRom;

TEST(HMAVHardwareFeatureRom, NamesEndWithinTheirField) {
    Rom rom;
    char name[Rom::NAME_SIZE];
    std::memset(name, 'x', sizeof(name));
    name[63] = '\0';
    rom.setFPGAPartName(name);
    rom.setVBNVName(name);
    EXPECT_EQ(rom.getFPGAPartName(), std::string(63, 'x'));
    name[63] = 'y';
    const std::string text = std::string(63, 'x') + "y";
    EXPECT_THROW_MSG(rom.setFPGAPartName(name), HEXDataException,
                     "The FPGAPartName specified for the Feature ROM is not a 64 char null "
                     "terminated string: '" +
                         text + "'");
    EXPECT_THROW_MSG(rom.setVBNVName(name), HEXDataException,
                     "The VBNVName specified for the Feature ROM is not a 64 char null terminated "
                     "string: '" +
                         text + "'");
    EXPECT_EQ(rom.getVBNVName(), std::string(63, 'x')) << "the old value stays";
    const char shorter[Rom::NAME_SIZE] = "ab\0cd";
    rom.setVBNVName(shorter);
    EXPECT_EQ(rom.getVBNVName(), "ab");
}

TEST(HMAVHardwareFeatureRom, UuidTexts) {
    Rom rom;
    EXPECT_EQ(rom.getUUID(), "00000000-0000-0000-0000-000000000000");
    for (const char* text :
         {"01234567-89AB-cdef-0123-456789abcdef", "0123456789abcdef0123456789ABCDEF",
          "{01234567-89ab-cdef-0123-456789abcdef}"}) {
        rom.setUUID(text);
        EXPECT_EQ(rom.getUUID(), "01234567-89ab-cdef-0123-456789abcdef") << text;
    }
    for (const std::string text :
         {"", "01234567", "01234567-89ab-cdef-0123-456789abcdeg",
          "01234567-89ab-cdef-0123-456789abcdef0", "{01234567-89ab-cdef-0123-456789abcdef"}) {
        EXPECT_THROW_MSG(rom.setUUID(text), HEXDataException,
                         "Unable to convert string to Feature ROM UUID: '" + text + "'");
        EXPECT_EQ(rom.getUUIDBytes()[15], 0xEF) << "the old value stays";
    }
}

TEST(HMAVHardwareFeatureRom, CdmaIndexesEndAtFour) {
    Rom rom;
    EXPECT_EQ(rom.getCDMABaseAddressSize(), 4U);
    rom.setCDMABaseAddress(3, 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(rom.getCDMABaseAddress(3), 0xFFFFFFFFFFFFFFFFU);
    const auto refusal = [](const std::string& index) {
        return "Attempt to set the CDMA Base Address on the DSA XML DOM object using index '" +
               index + "' which is out of bounds (max is: '4')";
    };
    EXPECT_THROW_MSG(rom.setCDMABaseAddress(4, 1), HEXAlgException, refusal("4"));
    EXPECT_THROW_MSG(rom.getCDMABaseAddress(4), HEXAlgException, refusal("4"));
    EXPECT_THROW_MSG(rom.getCDMABaseAddress(4294967295U), HEXAlgException, refusal("4294967295"));
}

TEST(HMAVHardwareFeatureRom, WritesNumbersInTheirForms) {
    Rom rom;
    std::string bits;
    for (int bit = 0; bit < 32; ++bit) {
        const std::string digits = std::to_string(bit);
        bits += std::string(bit == 0 ? "" : ",") + "\"bit" + (bit < 10 ? "0" : "") + digits +
                "\":\"" + (bit == 0 || bit == 31 ? "enabled" : "disabled") + "\"";
    }
    rom.setFeatureBitMap(0x80000001U);
    rom.setMajorVersion(1);
    rom.setCorvelBuildID(4294967295U);
    rom.setIpBuildID(18446744073709551615U);
    rom.setTimeSinceEpoch(9007199254740993U);
    const char part[Rom::NAME_SIZE] = "part/1";
    rom.setFPGAPartName(part);
    rom.setDrBaseAddress(0x00AB000000000000U);
    rom.setCDMABaseAddress(1, 0x1F);
    rom.setMaxPowerLimit(-5);
    EXPECT_EQ(compactJson(rom),
              R"({"majorVersion":"1","minorVersion":"0","corvelBuildID":"4294967295",)"
              R"("ipBuildID":"18446744073709551615","timeSinceEpoch":"9007199254740993",)"
              R"("fpgaPartName":"part\/1","ddrChannelCount":"0","ddrChannelSize":"0",)"
              R"("drBaseAddress":"0xab000000000000","featureBitMap":{)" +
                  bits +
                  R"(},"uuid":"00000000-0000-0000-0000-000000000000","cdmaBaseAddress1":"0x0",)"
                  R"("cdmaBaseAddress2":"0x1f","cdmaBaseAddress3":"0x0","cdmaBaseAddress4":"0x0",)"
                  R"("maxPowerLimit":"-5"})");
}

}  // namespace
