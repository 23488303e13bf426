// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVPlatform.h"
#include "support/Doubles.h"
#include "support/Json.h"

namespace {

/// A platform with one of its own hardware platforms in each of the two places.
struct TwoHardwares {
    TwoHardwares() {
        platform.setHardwarePlatform(own.get());
        platform.setDefaultRPHardwarePlatform(partition.get());
    }
    HMAVPlatform platform;
    std::shared_ptr<HPLPlatform> own = platform.createMutableHardwarePlatform();
    std::shared_ptr<HPLPlatform> partition = platform.createMutableHardwarePlatform();
};

HMAVDesignIntentStorage intent(bool card, bool embedded) {
    HMAVDesignIntentStorage storage;
    storage.setDataCenter(card, true);
    storage.setEmbedded(embedded, true);
    return storage;
}

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
        EXPECT_FALSE(unattached.expired());
        EXPECT_FALSE(software.expired());
    }
    EXPECT_TRUE(unattached.expired());
    EXPECT_TRUE(software.expired());
    shared->setName("alive");
    EXPECT_EQ(shared->getName(), "alive");
}

TEST(HMAVPlatform, RefusesWhatItDidNotCreate) {
    HMAVPlatform platform;
    HMAVPlatform other;
    HPLPlatform loose;
    const auto own = platform.createMutableHardwarePlatform();
    const auto foreign = other.createMutableHardwarePlatform();
    platform.setHardwarePlatform(own.get());
    for (HMAVHardwarePlatform* hardware : {static_cast<HMAVHardwarePlatform*>(nullptr),
                                           static_cast<HMAVHardwarePlatform*>(foreign.get()),
                                           static_cast<HMAVHardwarePlatform*>(&loose)}) {
        EXPECT_THROW_MSG(platform.setHardwarePlatform(hardware), HEXAlgException,
                         "invalid set hardware platform");
        EXPECT_THROW_MSG(platform.setHardwareEmulationPlatform(hardware), HEXAlgException,
                         "set invalid hardware emulation platform");
        EXPECT_THROW_MSG(platform.setDefaultRPHardwarePlatform(hardware), HEXAlgException,
                         "invalid set default RP hardware platform");
        EXPECT_THROW_MSG(platform.setDefaultRPHardwareEmulationPlatform(hardware), HEXAlgException,
                         "set invalid hardware emulation platform");
    }
    HMAVSoftwarePlatform* const foreignSoftware = other.createMutableSoftwarePlatform().get();
    EXPECT_THROW_MSG(platform.addSoftwarePlatform(foreignSoftware), HEXAlgException,
                     "added invalid software platform");
    EXPECT_THROW_MSG(platform.addSoftwarePlatform(nullptr), HEXAlgException,
                     "added invalid software platform");
    EXPECT_EQ(platform.getHardwarePlatform(), own.get());
    EXPECT_EQ(platform.getHardwareEmulationPlatform(), nullptr);
    EXPECT_EQ(platform.getSoftwarePlatform(), nullptr);
}

TEST(HMAVPlatform, DeletesItsPartitions) {
    struct Counted : HMAVReconfigurablePartition {
        explicit Counted(int& count) : HMAVReconfigurablePartition(1), deleted(count) {}
        ~Counted() override { ++deleted; }
        int& deleted;
    };
    int deleted = 0;
    {
        HMAVPlatform platform;
        platform.addReconfigurablePartition(new Counted(deleted));
        platform.addReconfigurablePartition(new Counted(deleted));
        platform.addReconfigurablePartition(nullptr);
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 2);
}

TEST(HMAVPlatform, SoftwarePlatformsAppendAndPartitionsReplace) {
    HMAVPlatform platform;
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

TEST(HMAVPlatform, TheLastPartitionOfAnIdCounts) {
    HMAVPlatform platform;
    const auto hardware = platform.createMutableHardwarePlatform();
    const auto emulation = platform.createMutableHardwarePlatform();
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
    EXPECT_EQ(platform.getRPHardwarePlatform(1), nullptr);
    EXPECT_EQ(platform.getDefaultRPHardwarePlatform(), nullptr);
    platform.setDefaultRPId(7);
    EXPECT_EQ(platform.getDefaultRPHardwarePlatform(), hardware.get());
    EXPECT_EQ(platform.getDefaultRPHardwareEmulationPlatform(), emulation.get());
}

TEST(HMAVPlatform, SomeAnswersComeFromTheDefaultPartitionAndSomeDoNot) {
    HMAVPlatform platform;
    const auto hardware = platform.createMutableHardwarePlatform();
    platform.setDefaultRPHardwarePlatform(hardware.get());
    hardware->setSupportsHardware(true);
    hardware->setSupportsSWEmulation(true);
    hardware->setSupportsHWEmulation(true);
    hardware->setSupportsTwoHwEmuBd(true);
    hardware->setHWEmuPlatform(true);
    hardware->setExpandable(true);
    hardware->setUnifiedPlatform(true);
    hardware->setExplicitDesignIntent(intent(true, false));
    hardware->addFile(HMAVPfmFileTypes::SIM_BINARY, "sim.bin");
    hardware->createBoard().addDimmConnector()->setName("DIMM0");

    EXPECT_EQ(platform.getHardwarePlatform(), hardware.get());
    EXPECT_TRUE(platform.supportsHardware());
    EXPECT_TRUE(platform.supportsSWEmulation());
    EXPECT_TRUE(platform.hasSimContent());
    EXPECT_TRUE(platform.isExpandable());
    EXPECT_FALSE(platform.isFixed());
    EXPECT_TRUE(platform.isUnified());
    EXPECT_TRUE(platform.getDesignIntentDataCenter());
    EXPECT_FALSE(platform.getDesignIntentEmbedded());
    HSTVector<std::string> connectors;
    const auto expectOwn = [&](bool own) {
        EXPECT_EQ(platform.supportsHWEmulation(), own);
        EXPECT_EQ(platform.supportsTwoHwEmuBd(), own);
        EXPECT_EQ(platform.isHWEmuPlatform(), own);
        EXPECT_EQ(platform.hasDimmConnectors(), own);
        platform.getDimmConnectors(connectors);
        EXPECT_EQ(connectors.size(), own ? 1U : 0U);
    };
    expectOwn(false);
    platform.setHardwarePlatform(hardware.get());
    expectOwn(true);
}

TEST(HMAVPlatform, HardwareEmulationComesFromTheFirstThatKnows) {
    HMAVPlatform platform;
    const auto hardware = platform.createMutableHardwarePlatform();
    const auto emulation = platform.createMutableHardwarePlatform();
    EXPECT_FALSE(platform.supportsHWEmulation());
    hardware->setSupportsHWEmulation(true);
    platform.setHardwarePlatform(hardware.get());
    EXPECT_TRUE(platform.supportsHWEmulation());
    // Partitions decide before the own hardware does.
    auto* const partition = new HMAVReconfigurablePartition(0);
    platform.addReconfigurablePartition(partition);
    EXPECT_FALSE(platform.supportsHWEmulation());
    EXPECT_FALSE(platform.hasRPHardwareEmulationPlatform());
    partition->setHardwareEmulationPlatform(emulation.get());
    EXPECT_TRUE(platform.supportsHWEmulation());
    EXPECT_FALSE(platform.hasHWEmulationPlatform());
    // An emulation platform of its own decides before both.
    partition->setHardwareEmulationPlatform(nullptr);
    platform.setHardwareEmulationPlatform(emulation.get());
    EXPECT_TRUE(platform.supportsHWEmulation());
    EXPECT_TRUE(platform.hasHWEmulationPlatform());
}

TEST(HMAVPlatform, EmulationPlatformFallsBackToTheDefaultPartition) {
    HMAVPlatform platform;
    const auto partition = platform.createMutableHardwarePlatform();
    const auto own = platform.createMutableHardwarePlatform();
    platform.setDefaultRPHardwareEmulationPlatform(partition.get());
    EXPECT_EQ(platform.getHardwareEmulationPlatform(), partition.get());
    EXPECT_FALSE(platform.hasHWEmulationPlatform());
    platform.setHardwareEmulationPlatform(own.get());
    EXPECT_EQ(platform.getHardwareEmulationPlatform(), own.get());
}

TEST(HMAVPlatform, TargetCategoriesComeFromBothHardwares) {
    const TwoHardwares two;
    HSTVector<std::string> categories = {"Kept"};
    two.platform.getTargetCategories(categories);
    EXPECT_EQ(categories, (HSTVector<std::string>{"Kept", "Acceleration", "Acceleration"}));
}

TEST(HMAVPlatform, TypeFollowsTheEffectiveDesignIntent) {
    HMAVPlatform platform;
    EXPECT_EQ(platform.getTypeString(), "");
    EXPECT_EQ(platform.getTypePrettyString(), "Undefined");
    const auto hardware = platform.createMutableHardwarePlatform();
    platform.setDefaultRPHardwarePlatform(hardware.get());
    const auto types = [&](const HMAVDesignIntentStorage& storage) {
        hardware->setExplicitDesignIntent(storage);
        return platform.getTypeString() + " " + platform.getTypePrettyString();
    };
    EXPECT_EQ(types(intent(false, false)), "undefined Undefined");
    EXPECT_EQ(types(intent(true, false)), "pellux Pellux");
    EXPECT_EQ(types(intent(false, true)), "quorin Quorin");
    EXPECT_EQ(types(intent(true, true)), "acceleration Acceleration");
    HMAVDesignIntentStorage external;
    external.setExternalHost(true, true);
    EXPECT_EQ(types(external), "pellux Pellux");
    HMAVDesignIntentStorage managed = intent(false, true);
    managed.setServerManaged(true, false);
    EXPECT_EQ(types(managed), "acceleration Acceleration");
}

TEST(HMAVPlatform, NamesComeFromThePlatformFile) {
    TwoHardwares two;
    HMAVPlatform& platform = two.platform;
    platform.setPlatformFile("boards/veltrin/h90.v2.qpfm");
    EXPECT_EQ(platform.getUniqueName(), "boards/veltrin/h90.v2.qpfm");
    EXPECT_EQ(platform.getPlatformDir(), "boards/veltrin");
    EXPECT_EQ(platform.getPlatformBaseName(), "h90.v2");
    two.own->addDevice()->setName("fpga0");
    two.partition->addDevice()->setName("fpga1");
    EXPECT_EQ(platform.getDeviceName(), "h90.v2");
    platform.setPartial(true);
    EXPECT_FALSE(platform.isComplete());
    EXPECT_EQ(platform.getDeviceName(), "fpga0");

    HMAVPlatform partial;
    partial.setPlatformFile("x.spfm");
    partial.setPartial(true);
    partial.setDefaultRPHardwarePlatform(partial.createMutableHardwarePlatform().get());
    EXPECT_EQ(partial.getDeviceName(), "x") << "the default partition's device does not count";

    EXPECT_FALSE(platform.isHidden());
    platform.setPlatformFile("mav:sample:hidden:1.0");
    EXPECT_TRUE(platform.isHidden());
}

TEST(HMAVPlatform, WritesAnEmptyPlatform) {
    EXPECT_EQ(compactJson(HMAVPlatform()),
              R"({"type":"Undefined","unified":"false","qpfm":"false","hardware":"false",)"
              R"("softwareEmulation":"false","hardwareEmulation":"false",)"
              R"("hardwareEmuPlatform":"false","hidden":"false"})");
}

TEST(HMAVPlatform, WritesItsMembersInOrder) {
    TwoHardwares two;
    HMAVPlatform& platform = two.platform;
    platform.setVendor("veltrin");
    platform.setLibrary("lib");
    platform.setName("h90");
    platform.setDescription("d");
    platform.setVersion("1.0");
    platform.setPlatformFile("p/h90.qpfm");
    platform.setHardwarePlatformFile("hw.pka");
    platform.setSoftwarePlatformFile("sw.spfm");
    platform.setHardwareEmulationPlatform(two.partition.get());
    const auto software = platform.createMutableSoftwarePlatform();
    platform.addSoftwarePlatform(software.get());
    const std::string upToFiles =
        "vendor name description uniqueName version type unified qpfm hardware softwareEmulation "
        "hardwareEmulation hardwareEmuPlatform hidden file hwFile ";
    const std::string behind = "swFile directory targetCategories ";
    const auto plain = jsonTree(platform);
    // A software platform without content leaves no trace.
    EXPECT_EQ(keysOf(plain), upToFiles + behind + "hardwarePlatforms ");
    EXPECT_EQ(keysOf(plain.get_child("hardwarePlatforms")), "hardwarePlatform ")
        << "the emulation platform is written only when the description names its archive";

    software->setDefaultConfigName("linux");
    platform.setHardwareEmuPlatformFile("emu.pka");
    platform.addReconfigurablePartition(new HMAVReconfigurablePartition(3));
    platform.setDefaultRPId(3);
    const auto whole = jsonTree(platform);
    EXPECT_EQ(keysOf(whole), upToFiles + "hwEmuFile " + behind +
                                 "defaultRPId hardwarePlatforms softwarePlatform ");
    EXPECT_EQ(keysOf(whole.get_child("hardwarePlatforms")),
              "hardwarePlatform hwEmuPlatform reconfigurablePartitions ");
    EXPECT_EQ(whole.get<std::string>("defaultRPId"), "3");
    EXPECT_EQ(whole.get<std::string>("uniqueName"), "p/h90.qpfm");
    EXPECT_EQ(whole.get<std::string>("directory"), "p");
}

TEST(HMAVReconfigurablePartition, WritesItsEmulationPlatformOnlyWithAnArchiveOfItsOwn) {
    HMAVReconfigurablePartition partition(9);
    EXPECT_EQ(compactJson(partition), R"({"id":"9"})");
    HPLPlatform hardware;
    partition.setHardwarePlatform(&hardware);
    partition.setHardwareEmulationPlatform(&hardware);
    EXPECT_EQ(keysOf(jsonTree(partition)), "id hardwarePlatform ");
    partition.setHardwareEmuPlatformFile("emu.pka");
    EXPECT_TRUE(partition.hasDistinctHardwareEmulationPlatform());
    EXPECT_EQ(keysOf(jsonTree(partition)), "id hardwarePlatform hwEmuPlatform ");
}

}  // namespace
