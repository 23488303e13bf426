// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDpeHardware.h"
#include "mav_platform/HMAVDpePartition.h"
#include "support/Doubles.h"
#include "support/Json.h"

namespace {

TEST(HMAVDpeHardware, ArchitecturesByName) {
    using Dpe = HMAVDpeHardware;
    for (const auto& [text, arch] : {std::pair{"NONE", Dpe::NO_DPE},
                                     {"nOnE", Dpe::NO_DPE},
                                     {"no_dpe", Dpe::NO_DPE},
                                     {"dpe", Dpe::DPE_A},
                                     {"DPE", Dpe::DPE_A},
                                     {"dpe_f", Dpe::DPE_F}}) {
        EXPECT_EQ(Dpe::stringToArch(text), arch) << text;
    }
    for (const auto& [arch, name] : Dpe::getArchMap()) {
        EXPECT_EQ(Dpe::stringToArch(name), arch);
        EXPECT_EQ(Dpe::archToString(arch), name);
    }
    EXPECT_EQ(Dpe::getArchMap().size(), 7U);
    EXPECT_EQ(Dpe::archToString(static_cast<Dpe::Arch>(7)), "NO_DPE");
}

TEST(HMAVDpeHardware, UnknownArchitecturesAreRefused) {
    HMAVDpeHardware hardware;
    hardware.setArch("dpe_b");
    for (const std::string text : {"DPE_G", "", " DPE", "7"}) {
        EXPECT_THROW_MSG(
            hardware.setArch(text), HEXAlgException,
            "HMAVDpeHardware::setArch() - Invalid dpe architecture specified: " + text);
    }
    EXPECT_EQ(hardware.getArch(), HMAVDpeHardware::DPE_B);
}

TEST(HMAVDpeHardware, HexadecimalTextAlwaysFails) {
    HMAVDpeHardware hardware;
    hardware.setNpiBaseAddress(16);
    EXPECT_THROW(hardware.getNpiBaseAddressAsHex(), std::logic_error);
}

TEST(HMAVDpeHardware, WritesItsMembersInOrder) {
    HMAVDpeHardware hardware;
    hardware.setArch(HMAVDpeHardware::DPE_C);
    hardware.setNpiBaseAddress(4060086272U);
    hardware.setAxiBaseAddress("0x200");
    hardware.setAxiHighAddress("0x2FF");
    hardware.setStartShimRow(0);
    hardware.setNumShimRows(1);
    hardware.setStartCoreRow(3);
    hardware.setNumCoreRows(8);
    hardware.setNumMemRows(2);
    hardware.setColDict("dict");
    EXPECT_EQ(compactJson(hardware),
              R"({"arch":"DPE_C","npiBaseAddress":"4060086272","axiBaseAddress":"0x200",)"
              R"("axiHighAddress":"0x2FF","shimRows":{"start":"0","num":"1"},)"
              R"("coreRows":{"start":"3","num":"8"},"memRows":{"start":"4294967295","num":"2"},)"
              R"("colDict":"dict","archMap":{"0":"NO_DPE","1":"DPE_A","2":"DPE_B","3":"DPE_C",)"
              R"("4":"DPE_D","5":"DPE_E","6":"DPE_F"}})");
}

HMAVDpePartition sample() {
    HMAVDpePartition root(2, 8);
    root.isRoot(true);
    root.dpeInst("dpe_0");
    root.uuid("u");
    root.plIntefaceID("pl");
    HMAVDpePartition& first = root.addPartition(2, 4);
    first.plIntefaceID("9");
    root.addPartition(2, 4).plIntefaceID("10");
    return root;
}

TEST(HMAVDpePartition, FindsTheFirstSubPartition) {
    const HMAVDpePartition root = sample();
    EXPECT_TRUE(root.isPartition());
    EXPECT_TRUE(root.hasPartitions());
    EXPECT_EQ(&root.findPartition(2, 4), &root.partitions().front());
    EXPECT_EQ(&root.findPartition(2, 3), &HMAVDpePartition::none());
    EXPECT_FALSE(HMAVDpePartition::none().isPartition());
    EXPECT_TRUE(root.hasPartition("10"));
    EXPECT_FALSE(root.hasPartition("pl")) << "its own id is not that of a sub-partition";
    EXPECT_FALSE(HMAVDpePartition(0, -1).isPartition());
}

TEST(HMAVDpePartition, ComparesEveryFieldAndTheSubPartitionsInOrder) {
    const HMAVDpePartition same = sample();
    EXPECT_TRUE(sample() == same);
    EXPECT_FALSE(sample() != same);
    void (*const changes[])(HMAVDpePartition&) = {
        [](HMAVDpePartition& p) { p.isRoot(false); },
        [](HMAVDpePartition& p) { p.startColumn(3); },
        [](HMAVDpePartition& p) { p.numColumns(9); },
        [](HMAVDpePartition& p) { p.dpeInst("x"); },
        [](HMAVDpePartition& p) { p.uuid("x"); },
        [](HMAVDpePartition& p) { p.plIntefaceID("x"); },
        [](HMAVDpePartition& p) { p.addPartition(); },
        [](HMAVDpePartition& p) { p.partitions().reverse(); },
        [](HMAVDpePartition& p) { p.partitions().pop_back(); },
        [](HMAVDpePartition& p) { p.clear(); },
    };
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        HMAVDpePartition changed = sample();
        changes[i](changed);
        EXPECT_TRUE(changed != same) << i;
    }
}

TEST(HMAVDpePartition, CopiesAreWhole) {
    HMAVDpePartition original = sample();
    const HMAVDpePartition copy = original;
    original.partitions().front().uuid("changed");
    EXPECT_EQ(copy, sample());
    original.clear();
    EXPECT_EQ(original, HMAVDpePartition());
    EXPECT_EQ(original, HMAVDpePartition::none());
}

TEST(HMAVDpePartition, ComesBackFromItsDocument) {
    EXPECT_EQ(compactJson(HMAVDpePartition()), R"({"startColumn":"0","numColumns":"0"})");
    EXPECT_EQ(
        compactJson(sample()),
        R"({"dpeInst":"dpe_0","startColumn":"2","numColumns":"8","uuid":"u",)"
        R"("plInterfaceID":"pl","partitions":[{"startColumn":"2","numColumns":"4",)"
        R"("plInterfaceID":"9"},{"startColumn":"2","numColumns":"4","plInterfaceID":"10"}]})");
    HMAVDpePartition read(5, 5);
    read.isRoot(true);
    read.addPartition().uuid("old");
    read.fromJSON(jsonTree(sample()));
    EXPECT_EQ(read, sample());
    read.fromJSON(boost::property_tree::ptree());
    HMAVDpePartition empty;
    empty.isRoot(true);
    EXPECT_EQ(read, empty) << "absent members become empty";
}

}  // namespace
