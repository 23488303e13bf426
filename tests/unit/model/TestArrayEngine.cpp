// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDpeHardware.h"
#include "mav_platform/HMAVDpePartition.h"
#include "support/Doubles.h"
#include "support/Json.h"
#include "support/Row.h"

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
    EXPECT_THROW(hardware.getNpiBaseAddressAsHex(), std::logic_error);
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
    EXPECT_EQ(&root.findPartition(2, 4), &root.partitions().front());
    EXPECT_EQ(&root.findPartition(2, 3), &HMAVDpePartition::none());
    EXPECT_EQ(row(root.isPartition(), root.hasPartitions(), HMAVDpePartition::none().isPartition(),
                  HMAVDpePartition(0, -1).isPartition(), root.hasPartition("10"),
                  root.hasPartition("pl")),
              "true|true|false|false|true|false")
        << "its own id is not that of a sub-partition";
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

TEST(HMAVDpePartition, ComesBackFromItsDocument) {
    HMAVDpePartition read(5, 5);
    read.isRoot(true);
    read.addPartition().uuid("old");
    const HMAVDpePartition copy = read;
    read.fromJSON(jsonTree(sample()));
    EXPECT_EQ(read, sample());
    EXPECT_EQ(copy.partitions().front().uuid(), "old") << "copies are whole";
    read.fromJSON(boost::property_tree::ptree());
    EXPECT_TRUE(read.isRoot());
    read.isRoot(false);
    EXPECT_EQ(read, HMAVDpePartition()) << "absent members become empty";
    EXPECT_EQ(read, HMAVDpePartition::none());
}

}  // namespace
