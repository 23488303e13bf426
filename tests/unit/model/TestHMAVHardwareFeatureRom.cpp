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
    const auto refusal = [&](const std::string& field) {
        return "The " + field +
               " specified for the Feature ROM is not a 64 char null terminated string: '" + text +
               "'";
    };
    EXPECT_THROW_MSG(rom.setFPGAPartName(name), HEXDataException, refusal("FPGAPartName"));
    EXPECT_THROW_MSG(rom.setVBNVName(name), HEXDataException, refusal("VBNVName"));
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
    for (const unsigned index : {4U, 4294967295U}) {
        const std::string refusal =
            "Attempt to set the CDMA Base Address on the DSA XML DOM object using index '" +
            std::to_string(index) + "' which is out of bounds (max is: '4')";
        EXPECT_THROW_MSG(rom.setCDMABaseAddress(index, 1), HEXAlgException, refusal);
        EXPECT_THROW_MSG(rom.getCDMABaseAddress(index), HEXAlgException, refusal);
    }
}

}  // namespace
