// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>

#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"

namespace {

void addClock(HPLPlatform& platform, const std::string& name, unsigned id,
              const std::string& frequency, const std::string& status = "fixed") {
    HMAVSystemClock* const clock = platform.addSystemClock();
    clock->setName(name);
    clock->setId(id);
    clock->setFrequency(frequency);
    clock->setStatus(status);
}

HMAVHardwareBusInterface* addBus(HPLPlatform& platform, const std::string& name,
                                 const std::string& port, const std::string& tag = "") {
    HMAVHardwareBusInterface* const bus = platform.addBusInterface();
    bus->setName(name);
    bus->setMemPort(port);
    bus->setSPTag(tag);
    return bus;
}

std::string memoryBuses(const HPLPlatform& platform) {
    HSTVector<HMAVHardwareBusInterface*> buses = {nullptr};
    const std::size_t size = platform.getMemoryBusInterfaces(buses);
    EXPECT_EQ(size, buses.size()) << "what the list held before counts too";
    buses.erase(buses.begin());
    std::string names;
    for (const HMAVHardwareBusInterface* bus : buses) names += bus->getName() + " ";
    return names;
}

TEST(HMAVHardwarePlatform, TheLastOfEqualClocksCounts) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getDefaultClock(), nullptr);
    EXPECT_EQ(platform.getDefaultClockName(), "");
    EXPECT_EQ(platform.getDefaultClockId(), "0");
    addClock(platform, "kernel", 0, "100");
    addClock(platform, "other", 4294967295U, "200");
    addClock(platform, "kernel", 7, "300");
    addClock(platform, "late", 0, "400");
    EXPECT_EQ(platform.getDefaultClockName(), "late");
    EXPECT_EQ(platform.getDefaultClockFrequency(), "400");
    EXPECT_EQ(platform.getPlatformFrequency(0), "400");
    EXPECT_EQ(platform.getPlatformFrequency(5), "");
    EXPECT_EQ(platform.getClockFrequency("kernel"), "300");
    EXPECT_EQ(platform.getClockId("kernel"), "7");
    EXPECT_EQ(platform.getClockId("other"), "-1") << "ids are printed signed";
    EXPECT_EQ(platform.getClockId("Kernel"), "");
    platform.setDefaultClockId(6);
    EXPECT_EQ(platform.getDefaultClock(), nullptr);
    EXPECT_EQ(platform.getDefaultClockId(), "6");
    HSTVector<std::string> list = {"kept"};
    platform.getSystemClockNames(list);
    platform.getAllClockFrequencies(list);
    platform.getCpuClockNames(list);
    EXPECT_EQ(list, (HSTVector<std::string>{"kept", "kernel", "other", "kernel", "late", "100",
                                            "200", "300", "400", "CPU"}));
}

TEST(HMAVHardwarePlatform, ClocksAreFixedOrScalable) {
    HPLPlatform platform;
    EXPECT_FALSE(platform.hasFixedClocks());
    EXPECT_FALSE(platform.hasScalableClocks());
    addClock(platform, "a", 0, "1", "changeable");
    EXPECT_FALSE(platform.hasFixedClocks());
    EXPECT_TRUE(platform.hasScalableClocks());

    HPLPlatform fixed;
    addClock(fixed, "a", 0, "1", "fixed");
    EXPECT_TRUE(fixed.hasFixedClocks());
    // A clock of the device counts only beside the core "fpga0".
    HPLDevice* const device = fixed.addDevice();
    device->addClock();
    device->createCore().setName("fpga1");
    EXPECT_FALSE(fixed.hasScalableClocks());
    device->createCore().setName("fpga0");
    EXPECT_TRUE(fixed.hasScalableClocks());
}

TEST(HMAVHardwarePlatform, IteratorsWalkTheListInItsOrder) {
    HPLPlatform platform;
    addClock(platform, "a", 0, "1");
    addClock(platform, "b", 1, "2");
    const std::unique_ptr<HSTFwdIter<HMAVSystemClock*>> clocks(platform.createSystemClockIter());
    std::string names;
    while (clocks->hasNext()) names += clocks->next()->getName();
    EXPECT_EQ(names, "ab");
    EXPECT_EQ(clocks->next(), nullptr);
    clocks->reset();
    EXPECT_EQ(clocks->next()->getName(), "a");

    HMAVHardwareFeatureRom* const rom = platform.addFeatureRom();
    const auto [first, last] = platform.getFeatureRomVecRange();
    ASSERT_EQ(last - first, 1);
    EXPECT_EQ(*first, rom);
    HSTVector<HMAVHardwareFeatureRom*> roms = {nullptr};
    platform.getFeatureRoms(roms);
    EXPECT_EQ(roms, (HSTVector<HMAVHardwareFeatureRom*>{nullptr, rom}));
}

TEST(HMAVHardwarePlatform, BusInterfacesAreCountedByTypeAndMode) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getBusInterfaceMaxDataWidth(), 0);
    const struct {
        const char* type;
        const char* mode;
        int width;
    } buses[] = {{"AXIMM", "Master", -512}, {"aximm", "slave", 64}, {"aximm", "slave", 32},
                 {"aximm", "mirrored", 0},  {"aximms", "slave", 0}, {"Interrupt", "slave", 1}};
    for (const auto& bus : buses) {
        HMAVHardwareBusInterface* const added = platform.addBusInterface();
        added->setName(bus.mode);
        added->setBusTypeRef(bus.type);
        added->setMode(bus.mode);
        added->setDataWidth(bus.width);
    }
    EXPECT_EQ(platform.getMaxAXIMMManagers(), 1);
    EXPECT_EQ(platform.getMaxAXIMMSubordinates(), 2);
    EXPECT_EQ(platform.getMaxInterrupts(), 1);
    EXPECT_EQ(platform.getBusInterfaceMaxDataWidth(), 64);
    HSTVector<HMAVHardwareBusInterface*> all;
    platform.getBusInterfaces(all);
    EXPECT_EQ(all.size(), 6U);
    EXPECT_EQ(platform.getBusInterfaceByName("slave"), all[1]);
    EXPECT_EQ(platform.getBusInterfaceByName("Slave"), nullptr);
    HPLPlatform narrow;
    narrow.addBusInterface()->setDataWidth(-1);
    EXPECT_EQ(narrow.getBusInterfaceMaxDataWidth(), 0);
}

TEST(HMAVHardwarePlatform, IndexedMemoryIsSettledByTheFirstBusThatTells) {
    HPLPlatform indexed;
    EXPECT_FALSE(indexed.isMemoryResourceIndexed());
    addBus(indexed, "none", "");
    addBus(indexed, "gp", "M_AXI_GP");
    addBus(indexed, "default", "MIG", "DEFAULT");
    EXPECT_FALSE(indexed.isMemoryResourceIndexed());
    // Nothing was settled, so the next interface still decides.
    addBus(indexed, "hbm", "MemSS", "HBM");
    EXPECT_TRUE(indexed.isMemoryResourceIndexed());
    addBus(indexed, "late", "mig", "DDR");
    EXPECT_TRUE(indexed.supportsMemoryResourceIndex());
    EXPECT_EQ(memoryBuses(indexed), "hbm ");

    HPLPlatform named;
    addBus(named, "gp", "s_axi_gp");
    addBus(named, "ddr", "mig", "");
    EXPECT_FALSE(named.isMemoryResourceIndexed());
    addBus(named, "late", "memss");
    EXPECT_FALSE(named.isMemoryResourceIndexed()) << "the first answer is kept";
    addBus(named, "default", "mig", "Default");
    addBus(named, "tagged", "mig", "defaults");
    EXPECT_EQ(memoryBuses(named), "ddr tagged ");
}

TEST(HMAVHardwarePlatform, GeneralPurposePortsSettleNothing) {
    HPLPlatform platform;
    addBus(platform, "m", "m_axi_gp");
    addBus(platform, "s", "S_AXI_GP");
    EXPECT_FALSE(platform.isMemoryResourceIndexed());
    EXPECT_EQ(memoryBuses(platform), "");
    addBus(platform, "late", "memss");
    EXPECT_TRUE(platform.isMemoryResourceIndexed());
}

TEST(HMAVHardwarePlatform, SlrOfAMemoryComesFromItsInterfaceOrSegment) {
    HPLPlatform platform;
    HMAVHardwareBusInterface* const bus = addBus(platform, "hbm", "memss");
    bus->setMemoryInstance("ddr");
    bus->setSLR("SLR1");
    HMAVHardwareAddressSegment* const segment = bus->addAddressSegment();
    segment->setMemoryInstance("hbm0");
    segment->setSLR("SLR0");
    EXPECT_EQ(platform.getMemorySLR("ddr"), "SLR1");
    EXPECT_EQ(platform.getMemorySLR("hbm0"), "SLR0");
    EXPECT_EQ(platform.getMemorySLR("hbm1"), "");
}

TEST(HMAVHardwarePlatform, MixedHbmBanksAreReportedOnceAndExplained) {
    const CapturedMessages messages;
    HPLPlatform platform;
    const auto explanation = [&] {
        std::ostringstream out;
        platform.issueNormalizeMemoryBanksMessage(out);
        return out.str();
    };
    platform.updateHBMBankInfo("hbm_ss_0", "HBM0", "preferred");
    platform.updateHBMBankInfo("hbm_ss_0", "HBM1", "false");
    platform.updateHBMBankInfo("hbm_ss_0", "HBM2", "preferred");
    EXPECT_EQ(explanation(), "") << "all that can be assigned are preferred";
    EXPECT_EQ(messages.text(), "");
    platform.updateHBMBankInfo("hbm_ss_0", "HBM3", "true");
    platform.updateHBMBankInfo("hbm_ss_0", "HBM4", "true");
    EXPECT_EQ(messages.text(), "@74-261@\n");
    EXPECT_EQ(explanation(),
              "\nThe HBM instance 'hbm_ss_0' has only a subset of its auto-assignable memory banks "
              "tagged as 'default'. To attain better HBM bandwidth, use mcc parameter "
              "'--advanced.param compiler.normalizeDefaultMemoryBanks=true' to change all HBM "
              "memory banks to 'default'.\n\n");
    platform.updateHBMBankInfo("hbm_ss_0", "HBM3", "preferred");
    platform.updateHBMBankInfo("hbm_ss_0", "HBM4", "false");
    EXPECT_EQ(explanation(), "") << "the last word on a bank counts";

    HPLPlatform none;
    none.updateHBMBankInfo("hbm", "HBM0", "true");
    std::ostringstream out;
    none.issueNormalizeMemoryBanksMessage(out);
    EXPECT_EQ(out.str(), "") << "none is preferred";
    for (const char* word : {"preferred", "preferred", "false"}) {
        none.updateHBMBankInfo("hbm", "HBM1", word);
    }
    none.issueNormalizeMemoryBanksMessage(out);
    EXPECT_EQ(out.str(), "") << "a bank that is named twice counts once";
}

TEST(HMAVHardwarePlatform, StateIsAText) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getState(), 3);
    const char* const texts[] = {"synth", "impl", "pre_synth"};
    for (int state = 0; state < 3; ++state) {
        platform.setState(state);
        EXPECT_EQ(platform.getPlatformState(), texts[state]);
        EXPECT_EQ(platform.getState(), state);
    }
    for (const int state : {3, -1}) {
        platform.setState(1);
        platform.setState(state);
        EXPECT_EQ(platform.getPlatformState(), "");
    }
    platform.setPlatformState("Impl");
    EXPECT_EQ(platform.getState(), 3);
}

TEST(HMAVHardwarePlatform, NamesOfTheMetadataMembersFollowTheExtension) {
    HPLPlatform platform;
    EXPECT_EQ(
        platform.getPlatformExt() + platform.getJsonFileName() + platform.getHwEmuJsonFileName(),
        "");
    EXPECT_EQ(platform.getAltJsonFileName(), "alt_") << "the prefix stands alone";
    EXPECT_EQ(platform.getAltHwEmuJsonFileName(), "hw_emu/alt_");
    platform.setPlatformFile("/p/h90.dsa");
    EXPECT_EQ(platform.getPlatformExt(), "dsa");
    EXPECT_EQ(platform.getJsonFileName(), "dsa.json");
    EXPECT_EQ(platform.getAltJsonFileName(), "alt_dsa.json");
    EXPECT_EQ(platform.getHwEmuJsonFileName(), "hw_emu/dsa.json");
    EXPECT_EQ(platform.getAltHwEmuJsonFileName(), "hw_emu/alt_dsa.json");
    platform.setPlatformFile("/p/.pka");
    EXPECT_EQ(platform.getJsonFileName(), "pka.json");
    EXPECT_EQ(HMAVHardwarePlatform::getValidPlatformExts(),
              (HSTVector<std::string>{".dsa", ".pka"}));
    for (const char* other : {".PKA", "pka", ".qpfm", ""}) {
        EXPECT_FALSE(HMAVHardwarePlatform::isValidPlatformExt(other)) << other;
    }
    EXPECT_TRUE(HMAVHardwarePlatform::isValidPlatformExt(".dsa"));
}

TEST(HMAVHardwarePlatform, TheTwoSwitchesAreGuardedTheOppositeWay) {
    HPLPlatform platform;
    platform.enableSegmentedConfiguration(true);
    EXPECT_FALSE(platform.supportsSegmentedConfiguration());
    platform.enableDynamicReload(true);
    EXPECT_TRUE(platform.supportsDynamicReload());
    platform.enableDynamicReload(false);
    EXPECT_FALSE(platform.supportsDynamicReload());

    platform.setExpandable(true);
    platform.enableDynamicReload(true);
    EXPECT_FALSE(platform.supportsDynamicReload());
    platform.enableSegmentedConfiguration(true);
    EXPECT_TRUE(platform.supportsSegmentedConfiguration());
    platform.enableSegmentedConfiguration(false);
    EXPECT_FALSE(platform.supportsSegmentedConfiguration());
}

TEST(HMAVHardwarePlatform, StatedIntentsWinOverComputedOnes) {
    HPLPlatform platform;
    HMAVDesignIntentStorage stated;
    stated.setDataCenter(false, true);
    stated.setEmbedded(true, true);
    HMAVDesignIntentStorage computed;
    computed.setDataCenter(true, false);
    computed.setServerManaged(true, false);
    platform.setExplicitDesignIntent(stated);
    platform.setComputedDesignIntent(computed);
    const HMAVDesignIntentStorage intent = platform.getDesignIntent();
    EXPECT_FALSE(intent.getDataCenter());
    EXPECT_TRUE(intent.getEmbedded());
    EXPECT_FALSE(intent.getExternalHost());
    EXPECT_TRUE(intent.getServerManaged());
    EXPECT_FALSE(intent.isServerManagedExplicit());
}

TEST(HMAVHardwarePlatform, HardwareDatabaseIsOpenedOnceFromTheArchive) {
    struct CountingManager : HHSMHwManager {
        std::shared_ptr<HHSMHwDb> open(const std::string& archive,
                                       const std::string& module) override {
            asked += archive + " " + module + "\n";
            return HHSMHwManager::open(archive, module);
        }
        std::string asked;
    } manager;
    HHSMHwManager* const before = HHSMHwManager::set(&manager);
    const TempDir dir;
    const std::string with = packArchive(dir, "card.pka", {{"sysdef.xml", "<s/>"}});
    const std::string without = packArchive(dir, "plain.pka", {{"pka.json", "{}"}});
    HPLPlatform platform;
    EXPECT_EQ(platform.getHwDbName(), "");
    platform.setPlatformFile(without);
    EXPECT_EQ(platform.getHwDbName(), "");
    platform.setPlatformFile(dir.path("absent.pka"));
    EXPECT_EQ(platform.getHwDbName(), "");
    EXPECT_EQ(manager.asked, "");
    platform.setPlatformFile(with);
    EXPECT_EQ(platform.getHwDb(), nullptr);
    EXPECT_EQ(platform.getHwDbName(), "card_fpga0");
    EXPECT_EQ(platform.getHwDbName(), "card_fpga0");
    EXPECT_EQ(manager.asked, with + " fpga0\n");
    EXPECT_NE(platform.getHwDb(), nullptr);
    EXPECT_FALSE(platform.createHwDb(without));
    HHSMHwManager::set(before);
}

TEST(HMAVHardwarePlatform, FindsIdentityRecordsAndArrayEnginePartitions) {
    HPLPlatform platform;
    EXPECT_EQ(platform.findReconfigPartition(0), nullptr);
    platform.addReconfigPartition()->setDesignID(3);
    HMAVReconfigPartition* const record = platform.addReconfigPartition();
    record->setDesignID(5);
    EXPECT_EQ(platform.findReconfigPartition(5), record);
    EXPECT_EQ(platform.findReconfigPartition(4), nullptr);
    EXPECT_EQ(platform.getDesignIDs(), nullptr);
    platform.createDesignIDs().setNodeID(2);
    EXPECT_EQ(platform.createDesignIDs().getNodeID(), 2U) << "made once";

    EXPECT_FALSE(platform.hasDpePartitions());
    HMAVDpePartition& first = platform.addDpePartition(0, 4);
    HMAVDpePartition& second = platform.addDpePartition();
    first.dpeInst("left");
    second.dpeInst("left");
    first.addPartition(0, 2).plIntefaceID("17");
    EXPECT_TRUE(platform.hasDpePartitions());
    EXPECT_EQ(&platform.findDpePartition("left"), &first);
    const HMAVDpePartition& missed = platform.findDpePartition("Left");
    EXPECT_FALSE(missed.isPartition());
    EXPECT_EQ(&missed, &platform.findDpePartition("right"));
    EXPECT_EQ(&missed, &HPLPlatform().findDpePartition("left"));
    EXPECT_TRUE(platform.hasDpePartition("17"));
    EXPECT_FALSE(platform.hasDpePartition("left"));
}

}  // namespace
