// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>

#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"
#include "support/Row.h"

namespace {

struct HardwareModel : testing::Test {
    HPLPlatform platform;
};

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

TEST_F(HardwareModel, TheLastOfEqualClocksCounts) {
    const auto defaults = [&] {
        return row(platform.getDefaultClock() == nullptr, platform.getDefaultClockName(),
                   platform.getDefaultClockId(), platform.getDefaultClockFrequency());
    };
    EXPECT_EQ(defaults(), "true||0|");
    addClock(platform, "kernel", 0, "100");
    addClock(platform, "other", 4294967295U, "200");
    addClock(platform, "kernel", 7, "300");
    addClock(platform, "late", 0, "400");
    EXPECT_EQ(defaults(), "false|late|0|400");
    EXPECT_EQ(row(platform.getPlatformFrequency(0), platform.getPlatformFrequency(5),
                  platform.getClockFrequency("kernel"), platform.getClockId("kernel"),
                  platform.getClockId("other"), platform.getClockId("Kernel")),
              "400||300|7|-1|")
        << "ids are printed signed";
    platform.setDefaultClockId(6);
    EXPECT_EQ(defaults(), "true||6|");
    EXPECT_EQ(appended([&](auto& list) {
                  platform.getSystemClockNames(list);
                  platform.getAllClockFrequencies(list);
                  platform.getCpuClockNames(list);
              }),
              "kept kernel other kernel late 100 200 300 400 CPU ");
}

TEST_F(HardwareModel, ClocksAreFixedOrScalable) {
    for (const auto& [status, kinds] : {std::pair{"fixed", "true|false"},
                                        {"scalable", "false|true"},
                                        {"changeable", "false|true"},
                                        {"Fixed", "false|false"}}) {
        HPLPlatform asked;
        addClock(asked, "a", 0, "1", status);
        EXPECT_EQ(row(asked.hasFixedClocks(), asked.hasScalableClocks()), kinds) << status;
    }
    // A clock of the device counts only beside the core "fpga0".
    HPLDevice* const device = platform.addDevice();
    device->addClock();
    device->createCore().setName("fpga1");
    EXPECT_FALSE(platform.hasScalableClocks());
    device->createCore().setName("fpga0");
    EXPECT_TRUE(platform.hasScalableClocks());
}

TEST_F(HardwareModel, IteratorsWalkTheListInItsOrder) {
    addClock(platform, "a", 0, "1");
    addClock(platform, "b", 1, "2");
    const std::unique_ptr<HSTFwdIter<HMAVSystemClock*>> clocks(platform.createSystemClockIter());
    std::string names;
    while (clocks->hasNext()) names += clocks->next()->getName();
    EXPECT_EQ(names, "ab");
    EXPECT_EQ(clocks->next(), nullptr);
    clocks->reset();
    EXPECT_EQ(clocks->next()->getName(), "a");
}

TEST_F(HardwareModel, BusInterfacesAreCountedByTypeAndMode) {
    const auto counts = [&] {
        return row(platform.getMaxAXIMMManagers(), platform.getMaxAXIMMSubordinates(),
                   platform.getMaxInterrupts(), platform.getBusInterfaceMaxDataWidth());
    };
    EXPECT_EQ(counts(), "0|0|0|0");
    const struct {
        const char *type, *mode;
        int width;
        const char* counts;
    } buses[] = {{"AXIMM", "Master", -512, "1|0|0|0"}, {"aximm", "slave", 64, "1|1|0|64"},
                 {"aximm", "slave", 32, "1|2|0|64"},   {"aximm", "mirrored", 0, "1|2|0|64"},
                 {"aximms", "slave", 0, "1|2|0|64"},   {"Interrupt", "slave", 1, "1|2|1|64"}};
    for (const auto& bus : buses) {
        HMAVHardwareBusInterface* const added = addBus(platform, bus.mode, "");
        added->setBusTypeRef(bus.type);
        added->setMode(bus.mode);
        added->setDataWidth(bus.width);
        EXPECT_EQ(counts(), bus.counts);
    }
    HSTVector<HMAVHardwareBusInterface*> all;
    platform.getBusInterfaces(all);
    EXPECT_EQ(all.size(), 6U);
    EXPECT_EQ(platform.getBusInterfaceByName("slave"), all[1]);
    EXPECT_EQ(platform.getBusInterfaceByName("Slave"), nullptr);
}

TEST_F(HardwareModel, IndexedMemoryIsSettledByTheFirstBusThatTells) {
    struct Bus {
        const char *name, *port, *tag, *answer;
    };
    // Default and general purpose ports settle nothing; the first answer is kept.
    const HSTVector<Bus> platforms[] = {{{"none", "", "", "false|"},
                                         {"gp", "M_AXI_GP", "", "false|"},
                                         {"s", "S_AXI_GP", "", "false|"},
                                         {"default", "MIG", "DEFAULT", "false|"},
                                         {"hbm", "MemSS", "HBM", "true|hbm "},
                                         {"late", "mig", "DDR", "true|hbm "}},
                                        {{"gp", "s_axi_gp", "", "false|"},
                                         {"ddr", "mig", "", "false|ddr "},
                                         {"late", "memss", "", "false|ddr "},
                                         {"default", "mig", "Default", "false|ddr "},
                                         {"tagged", "mig", "defaults", "false|ddr tagged "}}};
    for (const HSTVector<Bus>& buses : platforms) {
        HPLPlatform asked;
        EXPECT_FALSE(asked.isMemoryResourceIndexed());
        for (const Bus& bus : buses) {
            addBus(asked, bus.name, bus.port, bus.tag);
            const bool indexed = asked.isMemoryResourceIndexed();
            EXPECT_EQ(row(indexed, memoryBuses(asked)), bus.answer) << bus.name;
            EXPECT_EQ(asked.supportsMemoryResourceIndex(), indexed);
        }
    }
}

TEST_F(HardwareModel, NamesMeanTheSameInEveryLocale) {
    const OwnLetters letters;
    addBus(platform, "d", "MIG");
    EXPECT_EQ(memoryBuses(platform), "d ");
}

TEST_F(HardwareModel, SlrOfAMemoryComesFromItsInterfaceOrSegment) {
    HMAVHardwareBusInterface* const bus = addBus(platform, "hbm", "memss");
    bus->setMemoryInstance("ddr");
    bus->setSLR("SLR1");
    HMAVHardwareAddressSegment* const segment = bus->addAddressSegment();
    segment->setMemoryInstance("hbm0");
    segment->setSLR("SLR0");
    EXPECT_EQ(row(platform.getMemorySLR("ddr"), platform.getMemorySLR("hbm0"),
                  platform.getMemorySLR("hbm1")),
              "SLR1|SLR0|");
}

TEST_F(HardwareModel, MixedHbmBanksAreReportedOnceAndExplained) {
    const std::string whole =
        "\nThe HBM instance 'hbm_ss_0' has only a subset of its auto-assignable memory banks "
        "tagged as 'default'. To attain better HBM bandwidth, use mcc parameter "
        "'--advanced.param compiler.normalizeDefaultMemoryBanks=true' to change all HBM "
        "memory banks to 'default'.\n\n";
    const struct {
        HSTVector<std::pair<const char*, const char*>> banks;
        bool explained, reported;
    } cases[] = {
        {{}, false, false},
        {{{"0", "true"}}, false, false},  // none is preferred
        // All that can be assigned are preferred; a bank that is named twice counts once.
        {{{"0", "preferred"}, {"1", "false"}, {"2", "preferred"}, {"2", "preferred"}},
         false,
         false},
        {{{"0", "preferred"}, {"3", "true"}, {"4", "true"}}, true, true},
        {{{"0", "true"}, {"1", "preferred"}, {"1", "preferred"}, {"1", "false"}}, false, true},
        // The last word on a bank counts.
        {{{"0", "preferred"}, {"3", "true"}, {"3", "preferred"}}, false, true},
        {{{"0", "preferred"}, {"4", "true"}, {"4", "false"}}, false, true}};
    for (const auto& test : cases) {
        const CapturedMessages messages;
        HPLPlatform asked;
        for (const auto& [bank, word] : test.banks) asked.updateHBMBankInfo("hbm_ss_0", bank, word);
        EXPECT_EQ(messages.text(), test.reported ? "@74-261@\n" : "");
        std::ostringstream out;
        asked.issueNormalizeMemoryBanksMessage(out);
        EXPECT_EQ(out.str(), test.explained ? whole : "");
    }
}

TEST_F(HardwareModel, StateIsAText) {
    EXPECT_EQ(platform.getState(), 3);
    for (const auto& [state, text] :
         {std::pair{0, "synth"}, {1, "impl"}, {2, "pre_synth"}, {3, ""}, {-1, ""}}) {
        platform.setState(1);
        platform.setState(state);
        EXPECT_EQ(platform.getPlatformState(), text);
        EXPECT_EQ(platform.getState(), *text != '\0' ? state : 3);
    }
    platform.setPlatformState("Impl");
    EXPECT_EQ(platform.getState(), 3);
}

TEST_F(HardwareModel, NamesOfTheMetadataMembersFollowTheExtension) {
    const auto names = [&](const char* file) {
        platform.setPlatformFile(file);
        return row(platform.getPlatformExt(), platform.getJsonFileName(),
                   platform.getAltJsonFileName(), platform.getHwEmuJsonFileName(),
                   platform.getAltHwEmuJsonFileName());
    };
    EXPECT_EQ(names(""), "||alt_||hw_emu/alt_") << "the prefix stands alone";
    EXPECT_EQ(names("/p/h90.dsa"), "dsa|dsa.json|alt_dsa.json|hw_emu/dsa.json|hw_emu/alt_dsa.json");
    EXPECT_EQ(names("/p/.pka").substr(0, 12), "pka|pka.json");
    EXPECT_EQ(HMAVHardwarePlatform::getValidPlatformExts(),
              (HSTVector<std::string>{".dsa", ".pka"}));
    for (const char* other : {".PKA", "pka", ".qpfm", ""}) {
        EXPECT_FALSE(HMAVHardwarePlatform::isValidPlatformExt(other)) << other;
    }
    EXPECT_TRUE(HMAVHardwarePlatform::isValidPlatformExt(".dsa"));
}

TEST_F(HardwareModel, StatedIntentsWinOverComputedOnes) {
    HMAVDesignIntentStorage stated, computed;
    stated.setDataCenter(false, true);
    stated.setEmbedded(true, true);
    computed.setDataCenter(true, false);
    computed.setServerManaged(true, false);
    platform.setExplicitDesignIntent(stated);
    platform.setComputedDesignIntent(computed);
    const HMAVDesignIntentStorage intent = platform.getDesignIntent();
    EXPECT_EQ(row(intent.getDataCenter(), intent.getEmbedded(), intent.getExternalHost(),
                  intent.getServerManaged(), intent.isServerManagedExplicit()),
              "false|true|false|true|false");
}

TEST_F(HardwareModel, HardwareDatabaseIsOpenedOnceFromTheArchive) {
    const TempDir dir;
    const std::string with = packArchive(dir, "card.pka", {{"sysdef.xml", "<s/>"}});
    const std::string without = packArchive(dir, "plain.pka", {{"pka.json", "{}"}});
    for (const std::string& file : {std::string(), without, dir.path("absent.pka")}) {
        platform.setPlatformFile(file);
        EXPECT_EQ(platform.getHwDbName(), "");
    }
    platform.setPlatformFile(with);
    EXPECT_EQ(platform.getHwDb(), nullptr);
    EXPECT_EQ(platform.getHwDbName(), "card_fpga0");
    std::filesystem::remove(with);
    EXPECT_EQ(platform.getHwDbName(), "card_fpga0");
    EXPECT_NE(platform.getHwDb(), nullptr);
    EXPECT_FALSE(platform.createHwDb(without));
}

TEST_F(HardwareModel, FindsIdentityRecordsAndArrayEnginePartitions) {
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
    first.dpeInst("left");
    platform.addDpePartition().dpeInst("left");
    EXPECT_EQ(&platform.findDpePartition("left"), &first);
    EXPECT_EQ(&platform.findDpePartition("Left"), &HPLPlatform().findDpePartition("left"));
}

}  // namespace
