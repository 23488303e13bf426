// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <climits>

#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"
#include "support/Json.h"
#include "support/Row.h"

namespace {

struct CardModel : testing::Test {
    HPLPlatform platform;
};

HPLMemory* addMemory(HPLPlatform& platform, const std::string& name, const std::string& type,
                     const std::string& size) {
    HPLMemory* const memory = platform.addMemory();
    memory->setName(name);
    memory->setType(type);
    memory->setSize(size);
    return memory;
}

TEST_F(CardModel, JoinsItsIdentity) {
    EXPECT_EQ(platform.getVBNV(), ":::0.0");
    platform.setVendor("veltrin");
    platform.setBoardId("h90");
    platform.setName("gen3x16");
    platform.setVersionMajor(4294967295U);
    platform.setVersionMinor(2);
    platform.setPlatformFile("/p/h90.pka");
    EXPECT_EQ(row(platform.getPrettyName(), platform.getUniqueName()),
              "GEN3X16 (veltrin:h90:gen3x16:4294967295.2)|/p/h90.pka");
    const EnvVar repo("BOARD_REPO_PATH", "/boards");
    EXPECT_EQ(platform.getBoardRepo(), "/boards");
    const EnvVar unset("BOARD_REPO_PATH", std::nullopt);
    EXPECT_EQ(platform.getBoardRepo(), "");
}

TEST_F(CardModel, PartAndDeviceFallBack) {
    const auto parts = [&] {
        return row(platform.getFpgaPart(), platform.getPartName(), platform.getFpgaDevice(),
                   platform.getDeviceName());
    };
    EXPECT_EQ(parts() + platform.getFFCount(), "|||");
    platform.createBoard().setPart("board-part");
    HPLDevice* const device = platform.addDevice();
    platform.addDevice()->setFpgaPart("second");
    device->setName("fpga0");
    EXPECT_EQ(parts(), "board-part|board-part|fpga0|fpga0");
    device->setFpgaPart("xqh90-2L");
    device->getPart().setDevice("xq-h90");
    EXPECT_EQ(parts(), "xqh90-2L|xqh90-2L|xq-h90|fpga0");
    EXPECT_EQ(platform.getDevice("fpga0"), device);
    EXPECT_EQ(platform.getDevice("fpga1"), nullptr);
    HPLCore& core = device->createCore();
    core.setRegisterCount("5");
    core.addValidSlr("SLR0");
    EXPECT_EQ(row(platform.getRegisterCount(), platform.getFFCount()), "5|5");
    EXPECT_EQ(appended([&](auto& list) { platform.getValidSLRNames(list); }), "kept SLR0 ");
}

TEST_F(CardModel, InterfaceDescriptionHasThreeSources) {
    EXPECT_EQ(platform.getInterfaceDesc(), "");
    HMAVDesignIntentStorage intent;
    intent.setDataCenter(true, true);
    platform.setExplicitDesignIntent(intent);
    EXPECT_EQ(platform.getInterfaceDesc(), "");
    intent.setExternalHost(true, true);
    platform.setExplicitDesignIntent(intent);
    EXPECT_EQ(platform.getInterfaceDesc(), "PCIe gen3x8");
    platform.addDevice()->setName("XQ-G3X16");
    EXPECT_EQ(platform.getInterfaceDesc(), "PCIe gen3x16");
    HPLInterface* const first = platform.addInterface();
    first->setName("PCIe");
    EXPECT_EQ(platform.getInterfaceDesc(), "PCIe gen3x16") << "a name without a type says nothing";
    first->setType("gen4x8");
    EXPECT_EQ(platform.getInterfaceDesc(), "PCIe gen4x8");
}

TEST_F(CardModel, MemorySizesInGb) {
    constexpr int NONE = -1000;
    constexpr int TOO_LARGE = -1001;
    constexpr const char* ALL = "2147483647 GB";
    const std::pair<const char*, int> sizes[] = {// what stands behind is left in place
                                                 {"16 GB", 16},
                                                 {"16GB", 16},
                                                 {"512MB", 512},
                                                 {"64", 64},
                                                 {"8 GB of 16 GB x", 8},
                                                 {"4 GB2", 42},
                                                 {"  12 GB", 12},
                                                 {"-3 GB", -3},
                                                 {ALL, INT_MAX},
                                                 {ALL, INT_MAX},
                                                 // what is no number, or does not fit, adds nothing
                                                 {"", NONE},
                                                 {"many GB", NONE},
                                                 {"DDR4 16 GB", NONE},
                                                 {"GB", NONE},
                                                 {"99999999999 GB", TOO_LARGE}};
    EXPECT_EQ(platform.getMemSizeInGb(5), 0) << "no memories, so no index is wrong";
    long long total = 0;
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        const auto [text, size] = sizes[i];
        EXPECT_EQ(platform.getTotalMemSizeInGb(), std::min<long long>(total, INT_MAX)) << text;
        addMemory(platform, "", "", text);
        if (size == NONE) {
            EXPECT_THROW(platform.getMemSizeInGb(i), std::invalid_argument) << text;
        } else if (size == TOO_LARGE) {
            EXPECT_THROW(platform.getMemSizeInGb(i), std::out_of_range) << text;
        } else {
            EXPECT_EQ(platform.getMemSizeInGb(i), size) << text;
            total += size;
        }
    }
    EXPECT_EQ(platform.getTotalMemSizeInGb(), INT_MAX);
    EXPECT_THROW(platform.getMemSizeInGb(std::size(sizes)), std::out_of_range);
}

TEST_F(CardModel, MemoriesByTypeAndName) {
    const auto first = [&] {
        return row(platform.getMemType(), platform.getMemSize(), platform.getMemorySize("bank0"));
    };
    EXPECT_EQ(first(), "ddr4|8 GB|16GB");
    HPLMemory* const memory = addMemory(platform, "bank0", "", "");
    EXPECT_EQ(first(), "ddr4|8 GB|16GB");
    HPLMemory* const second = addMemory(platform, "bank1", "hbm", "");
    addMemory(platform, "bank1", "DDR5", "64 GB");
    EXPECT_EQ(first(), "hbm|64 GB|16GB") << "as stated";
    second->setSize("256MB");
    memory->setType("DDR5");
    memory->setSize("32 GB");
    addMemory(platform, "bank2", "hbm", "256MB");
    EXPECT_EQ(first(), "DDR5|32 GB|32 GB");
    EXPECT_EQ(row(platform.getNumDDRs(), platform.getMemoryIndex("bank1"),
                  platform.getMemoryIndex("Bank1"), platform.getMemorySize("bank1"),
                  platform.getMemoryTypeCount("hbm"), platform.getMemoryTypeCount("HBM"),
                  platform.getUniqueMemoryTypeCount()),
              "2|1|-1|256MB|2|0|2");
    platform.addMemory()->setType("kept");
    EXPECT_EQ(appended([&](auto& list) { platform.getUniqueMemoryTypeStrings(list); }),
              "kept DDR5 hbm kept ")
        << "what the caller's list held does not count";
}

TEST_F(CardModel, ConnectorsOfTheBoard) {
    const auto names = [&] {
        return appended([&](auto& list) {
            platform.getDimmConnectors(list);
            platform.getLockedDimmConnectors(list);
            platform.getConnectedDimmConnectors(list);
            platform.getBoardImgZipEntries(list);
        });
    };
    const auto connections = [&] {
        return row(platform.getBoardConnectionsString(), platform.getLockedBoardConnectionsString(),
                   platform.getUnlockedBoardConnectionsString());
    };
    EXPECT_EQ(names() + connections(), "kept ||");
    HPLBoard& board = platform.createBoard();
    EXPECT_FALSE(platform.hasDimmConnectors());
    board.setImageFileHdpi("h.png");
    board.setImageFileLdpi("l.png");
    for (const char* name : {"D0", "D1", "D2"}) {
        HPLBoard::DimmConnector* const connector = board.addDimmConnector();
        connector->setName(name);
        connector->setDisplayName(std::string("slot ") + name);
        connector->setConnectedName("8G");
        connector->setConnected(name != std::string("D0"));
        connector->setLocked(name != std::string("D1"));
    }
    EXPECT_TRUE(platform.hasDimmConnectors());
    EXPECT_EQ(names(), "kept D0 D1 D2 D0 D2 D1 D2 h.png l.png ");
    EXPECT_EQ(connections(), "D1=8G D2=8G|D2=8G|D1=8G");
    EXPECT_EQ(platform.getConnectorDisplayName("D1"), "slot D1");
}

TEST_F(CardModel, FilesAreFoundByTheirTypeText) {
    using Types = HMAVPfmFileTypes;
    EXPECT_EQ(platform.getFile(Types::DCP), "");
    platform.addFile(Types::DCP, "first.dcp");
    platform.addFile("DCP", "second.dcp");
    platform.addFile("dcp", "third.dcp");
    platform.addFile("SIM_BINARY", "sim");
    EXPECT_EQ(row(platform.getFile("DCP"), platform.getFile(Types::DCP),
                  platform.findFile("dcp")->getName(), platform.hasFile(Types::PDI),
                  platform.hasSimContent()),
              "first.dcp|first.dcp|third.dcp|false|true");
    EXPECT_TRUE(platform.removeFile(Types::DCP));
    EXPECT_EQ(platform.getFile("DCP"), "second.dcp");
    EXPECT_TRUE(platform.removeFile("DCP"));
    EXPECT_FALSE(platform.removeFile("DCP"));
    EXPECT_EQ(platform.getFiles().size(), 2U);

    const CapturedMessages messages;
    EXPECT_TRUE(HPLPlatform::validateFileType("IMPL_CONSTRS"));
    EXPECT_FALSE(HPLPlatform::validateFileType("impl_constrs"));
    EXPECT_EQ(messages.text(), "@74-271@%s|impl_constrs\n");
}

TEST_F(CardModel, SwitchListsReplace) {
    platform.addYarcLinkXpSwitch("l");
    platform.addYarcCompileXpSwitch("c");
    HSTVector<std::string> list = {"old"};
    platform.getYarcLinkXpSwitches(list);
    EXPECT_EQ(list, HSTVector<std::string>{"l"});
    platform.getYarcCompileXpSwitches(list);
    EXPECT_EQ(list, HSTVector<std::string>{"c"});
}

TEST_F(CardModel, ExtensionsAsText) {
    boost::property_tree::ptree extensions;
    extensions.push_back({"a.b", boost::property_tree::ptree("1")});
    platform.setExtensions(extensions);
    EXPECT_EQ(platform.getExtMetaJsonAsString(), "{\n    \"a.b\": \"1\"\n}\n");
}

TEST_F(CardModel, HpfmTextComesFromTheArchive) {
    const TempDir dir;
    EXPECT_EQ(platform.getHpfmString(), "");
    platform.addFile(HMAVPfmFileTypes::HPFM, "a.hpfm");
    platform.setPlatformFile(dir.path("absent.pka"));
    EXPECT_EQ(platform.getHpfmString(), "");
    platform.setPlatformFile(
        packArchive(dir, "a.pka", {{"a.hpfm", "<own/>"}, {"hw_emu/a.hpfm", "<emu/>"}}));
    EXPECT_EQ(platform.getHpfmString(), "<own/>");
    platform.setIsChildHardwareEmuPlatform(true);
    EXPECT_EQ(platform.getHpfmString(), "<emu/>");
}

TEST_F(CardModel, MarksEveryClockOfTheDefaultName) {
    for (const auto& [name, id] : {std::pair{"a", 3U}, {"b", 4U}, {"a", 5U}}) {
        HMAVSystemClock* const clock = platform.addSystemClock();
        clock->setName(name);
        clock->setId(id);
    }
    platform.setDefaultClockId(5);
    std::string marks;
    const auto tree = jsonTree(platform);
    for (const auto& clock : tree.get_child("systemClocks")) {
        EXPECT_EQ(keysOf(clock.second), "name id default ");
        marks += clock.second.get<std::string>("default") + " ";
    }
    EXPECT_EQ(marks, "true false true ");
}

}  // namespace
