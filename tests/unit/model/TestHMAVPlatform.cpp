// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVPlatform.h"
#include "support/Doubles.h"
#include "support/Json.h"
#include "support/Row.h"

namespace {

struct PlatformModel : testing::Test {
    HMAVPlatform platform;
    std::shared_ptr<HPLPlatform> hardware = platform.createMutableHardwarePlatform();
    std::shared_ptr<HPLPlatform> emulation = platform.createMutableHardwarePlatform();
};

TEST(HMAVPlatform, OwnsWhatItCreatedUntilTheLastShareGoes) {
    std::weak_ptr<HPLPlatform> unattached;
    std::weak_ptr<HMAVSoftwarePlatform> software;
    std::shared_ptr<HPLPlatform> shared;
    {
        HMAVPlatform platform;
        unattached = platform.createMutableHardwarePlatform();
        software = platform.createMutableSoftwarePlatform();
        shared = platform.createMutableHardwarePlatform();
        platform.setHardwarePlatform(shared.get());
        EXPECT_EQ(row(unattached.expired(), software.expired()), "false|false");
    }
    EXPECT_EQ(row(unattached.expired(), software.expired()), "true|true");
    shared->setName("alive");
    EXPECT_EQ(shared->getName(), "alive");
}

TEST_F(PlatformModel, RefusesWhatItDidNotCreate) {
    HMAVPlatform other;
    HPLPlatform loose;
    const auto foreign = other.createMutableHardwarePlatform();
    platform.setHardwarePlatform(hardware.get());
    const std::pair<void (HMAVPlatform::*)(HMAVHardwarePlatform*), const char*> setters[] = {
        {&HMAVPlatform::setHardwarePlatform, "invalid set hardware platform"},
        {&HMAVPlatform::setHardwareEmulationPlatform, "set invalid hardware emulation platform"},
        {&HMAVPlatform::setDefaultRPHardwarePlatform, "invalid set default RP hardware platform"},
        {&HMAVPlatform::setDefaultRPHardwareEmulationPlatform,
         "set invalid hardware emulation platform"}};
    for (const auto& [set, refusal] : setters) {
        EXPECT_THROW_MSG((platform.*set)(nullptr), HEXAlgException, refusal);
        EXPECT_THROW_MSG((platform.*set)(foreign.get()), HEXAlgException, refusal);
        EXPECT_THROW_MSG((platform.*set)(&loose), HEXAlgException, refusal);
    }
    for (HMAVSoftwarePlatform* wrong : {static_cast<HMAVSoftwarePlatform*>(nullptr),
                                        other.createMutableSoftwarePlatform().get()}) {
        EXPECT_THROW_MSG(platform.addSoftwarePlatform(wrong), HEXAlgException,
                         "added invalid software platform");
    }
    EXPECT_EQ(platform.getHardwarePlatform(), hardware.get());
    EXPECT_EQ(platform.getHardwareEmulationPlatform(), nullptr);
    EXPECT_EQ(platform.getSoftwarePlatform(), nullptr);
}

TEST_F(PlatformModel, SoftwarePlatformsAppendAndPartitionsReplace) {
    const auto first = platform.createMutableSoftwarePlatform();
    const auto second = platform.createMutableSoftwarePlatform();
    platform.addSoftwarePlatform(second.get());
    platform.addSoftwarePlatform(first.get());
    EXPECT_EQ(platform.getSoftwarePlatform(), second.get());
    HSTVector<HMAVSoftwarePlatform*> softwares = {nullptr};
    platform.getSoftwarePlatforms(softwares);
    EXPECT_EQ(softwares, (HSTVector<HMAVSoftwarePlatform*>{nullptr, second.get(), first.get()}));

    auto* const partition = new HMAVReconfigurablePartition(4);
    platform.addReconfigurablePartition(partition);
    HSTVector<HMAVReconfigurablePartition*> partitions = {nullptr, nullptr};
    platform.getReconfigurablePartitions(partitions);
    EXPECT_EQ(partitions, (HSTVector<HMAVReconfigurablePartition*>{partition}));
}

TEST_F(PlatformModel, TheLastPartitionOfAnIdCounts) {
    auto* const earlier = new HMAVReconfigurablePartition(7);
    auto* const later = new HMAVReconfigurablePartition(7);
    platform.addReconfigurablePartition(earlier);
    platform.addReconfigurablePartition(later);
    platform.addReconfigurablePartition(new HMAVReconfigurablePartition(0));
    EXPECT_EQ(platform.getReconfigurablePartition(7), later);
    EXPECT_EQ(platform.getReconfigurablePartition(1), nullptr);

    earlier->setHardwarePlatform(hardware.get());
    EXPECT_EQ(platform.getRPHardwarePlatform(7), nullptr);
    later->setHardwarePlatform(hardware.get());
    later->setHardwareEmulationPlatform(emulation.get());
    EXPECT_EQ(platform.getRPHardwarePlatform(7), hardware.get());
    EXPECT_EQ(platform.getRPHardwareEmulationPlatform(7), emulation.get());
    EXPECT_EQ(platform.getDefaultRPHardwarePlatform(), nullptr);
    platform.setDefaultRPId(7);
    EXPECT_EQ(platform.getDefaultRPHardwarePlatform(), hardware.get());
    EXPECT_EQ(platform.getDefaultRPHardwareEmulationPlatform(), emulation.get());
}

TEST_F(PlatformModel, SomeAnswersComeFromTheDefaultPartitionAndSomeDoNot) {
    hardware->setSupportsHardware(true);
    hardware->setSupportsSWEmulation(true);
    hardware->setSupportsHWEmulation(true);
    hardware->setSupportsTwoHwEmuBd(true);
    hardware->setHWEmuPlatform(true);
    hardware->setExpandable(true);
    hardware->setUnifiedPlatform(true);
    hardware->addFile(HMAVPfmFileTypes::SIM_BINARY, "sim.bin");
    hardware->createBoard().addDimmConnector()->setName("DIMM0");
    const auto effective = [&] {
        return row(platform.getHardwarePlatform() == hardware.get(), platform.supportsHardware(),
                   platform.supportsSWEmulation(), platform.hasSimContent(),
                   platform.isExpandable(), platform.isFixed(), platform.isUnified());
    };
    const auto own = [&] {
        return row(platform.supportsHWEmulation(), platform.supportsTwoHwEmuBd(),
                   platform.isHWEmuPlatform(), platform.hasDimmConnectors(),
                   appended([&](auto& list) { platform.getDimmConnectors(list); }));
    };
    EXPECT_EQ(effective(), "false|false|false|false|false|true|false");
    platform.setDefaultRPHardwarePlatform(hardware.get());
    EXPECT_EQ(effective(), "true|true|true|true|true|false|true");
    EXPECT_EQ(own(), "false|false|false|false|kept ");
    platform.setHardwarePlatform(hardware.get());
    EXPECT_EQ(own(), "true|true|true|true|kept DIMM0 ");
}

TEST_F(PlatformModel, HardwareEmulationComesFromTheFirstThatKnows) {
    const auto answers = [&] {
        return row(platform.supportsHWEmulation(), platform.hasRPHardwareEmulationPlatform(),
                   platform.hasHWEmulationPlatform());
    };
    EXPECT_EQ(answers(), "false|false|false");
    hardware->setSupportsHWEmulation(true);
    platform.setHardwarePlatform(hardware.get());
    EXPECT_EQ(answers(), "true|false|false");
    // Partitions decide before the own hardware does.
    auto* const partition = new HMAVReconfigurablePartition(0);
    platform.addReconfigurablePartition(partition);
    EXPECT_EQ(answers(), "false|false|false");
    partition->setHardwareEmulationPlatform(emulation.get());
    EXPECT_EQ(answers(), "true|true|false");
    // An emulation platform of its own decides before both.
    partition->setHardwareEmulationPlatform(nullptr);
    platform.setHardwareEmulationPlatform(emulation.get());
    EXPECT_EQ(answers(), "true|false|true");
}

TEST_F(PlatformModel, TypeFollowsTheEffectiveDesignIntent) {
    EXPECT_EQ(row(platform.getTypeString(), platform.getTypePrettyString()), "|Undefined");
    platform.setDefaultRPHardwarePlatform(hardware.get());
    const struct {
        bool card, embedded, external, managed;
        const char* type;
    } cases[] = {{false, false, false, false, "undefined|Undefined"},
                 {true, false, false, false, "pellux|Pellux"},
                 {false, true, false, false, "quorin|Quorin"},
                 {true, true, false, false, "acceleration|Acceleration"},
                 {false, false, true, false, "pellux|Pellux"},
                 {false, true, false, true, "acceleration|Acceleration"}};
    for (const auto& test : cases) {
        HMAVDesignIntentStorage intent;
        intent.setDataCenter(test.card, true);
        intent.setEmbedded(test.embedded, true);
        intent.setExternalHost(test.external, true);
        intent.setServerManaged(test.managed, false);
        hardware->setExplicitDesignIntent(intent);
        EXPECT_EQ(row(platform.getTypeString(), platform.getTypePrettyString()), test.type);
        EXPECT_EQ(platform.getDesignIntentDataCenter(), test.card);
        EXPECT_EQ(platform.getDesignIntentEmbedded(), test.embedded);
        EXPECT_EQ(platform.getDesignIntentExternalHost(), test.external);
        EXPECT_EQ(platform.getDesignIntentServerManaged(), test.managed);
    }
}

TEST_F(PlatformModel, NamesComeFromThePlatformFile) {
    platform.setHardwarePlatform(hardware.get());
    platform.setDefaultRPHardwarePlatform(emulation.get());
    platform.setPlatformFile("boards/veltrin/h90.v2.qpfm");
    hardware->addDevice()->setName("fpga0");
    emulation->addDevice()->setName("fpga1");
    const auto names = [](const HMAVPlatform& asked) {
        return row(asked.getUniqueName(), asked.getPlatformDir(), asked.getPlatformBaseName(),
                   asked.isComplete(), asked.getDeviceName(), asked.isHidden());
    };
    const std::string path = "boards/veltrin/h90.v2.qpfm|boards/veltrin|h90.v2|";
    EXPECT_EQ(names(platform), path + "true|h90.v2|false");
    platform.setPartial(true);
    EXPECT_EQ(names(platform), path + "false|fpga0|false");
    EXPECT_EQ(appended([&](auto& list) { platform.getTargetCategories(list); }),
              "kept Acceleration Acceleration ");

    HMAVPlatform partial;
    partial.setPlatformFile("x.spfm");
    partial.setPartial(true);
    partial.setDefaultRPHardwarePlatform(partial.createMutableHardwarePlatform().get());
    EXPECT_EQ(partial.getDeviceName(), "x") << "the default partition's device does not count";
    partial.setPlatformFile("mav:sample:hidden:1.0");
    EXPECT_TRUE(partial.isHidden());
}

TEST_F(PlatformModel, WritesWhatItHas) {
    platform.setHardwarePlatform(hardware.get());
    platform.setHardwareEmulationPlatform(emulation.get());
    const auto plain = jsonTree(platform);
    EXPECT_EQ(keysOf(plain.get_child("hardwarePlatforms")), "hardwarePlatform ")
        << "the emulation platform is written only when the description names its archive";
    platform.setHardwareEmuPlatformFile("emu.pka");
    HMAVReconfigurablePartition own(9);
    own.setHardwarePlatform(hardware.get());
    own.setHardwareEmulationPlatform(emulation.get());
    EXPECT_EQ(keysOf(jsonTree(own)), "id hardwarePlatform ") << "a partition's too";
    platform.addReconfigurablePartition(new HMAVReconfigurablePartition(3));
    EXPECT_EQ(keysOf(jsonTree(platform).get_child("hardwarePlatforms")),
              "hardwarePlatform hwEmuPlatform reconfigurablePartitions ");
}

}  // namespace
