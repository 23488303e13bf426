// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <climits>

#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"
#include "support/Json.h"

namespace {

HPLMemory* addMemory(HPLPlatform& platform, const std::string& name, const std::string& type,
                     const std::string& size) {
    HPLMemory* const memory = platform.addMemory();
    memory->setName(name);
    memory->setType(type);
    memory->setSize(size);
    return memory;
}

TEST(HPLPlatform, JoinsItsIdentity) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getVBNV(), ":::0.0");
    platform.setVendor("veltrin");
    platform.setBoardId("h90");
    platform.setName("gen3x16");
    platform.setVersionMajor(4294967295U);
    platform.setVersionMinor(2);
    platform.setPlatformFile("/p/h90.pka");
    EXPECT_EQ(platform.getVBNV(), "veltrin:h90:gen3x16:4294967295.2");
    EXPECT_EQ(platform.getPrettyName(), "GEN3X16 (veltrin:h90:gen3x16:4294967295.2)");
    EXPECT_EQ(platform.getUniqueName(), "/p/h90.pka");
    const EnvVar repo("BOARD_REPO_PATH", "/boards");
    EXPECT_EQ(platform.getBoardRepo(), "/boards");
    const EnvVar unset("BOARD_REPO_PATH", std::nullopt);
    EXPECT_EQ(platform.getBoardRepo(), "");
}

TEST(HPLPlatform, PartAndDeviceFallBack) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getFpgaPart() + platform.getFpgaDevice() + platform.getDeviceName(), "");
    EXPECT_EQ(platform.getBRAMCount(), "");
    EXPECT_EQ(platform.getNumComputeUnits(), 0U);
    platform.createBoard().setPart("board-part");
    EXPECT_EQ(platform.getPartName(), "board-part");
    HPLDevice* const device = platform.addDevice();
    platform.addDevice()->setFpgaPart("second");
    device->setName("fpga0");
    EXPECT_EQ(platform.getFpgaPart(), "board-part");
    EXPECT_EQ(platform.getFpgaDevice(), "fpga0");
    device->setFpgaPart("xqh90-2L");
    device->getPart().setDevice("xq-h90");
    EXPECT_EQ(platform.getFpgaPart(), "xqh90-2L");
    EXPECT_EQ(platform.getPartName(), "xqh90-2L");
    EXPECT_EQ(platform.getFpgaDevice(), "xq-h90");
    EXPECT_EQ(platform.getDeviceName(), "fpga0");
    EXPECT_EQ(platform.getDevice("fpga0"), device);
    EXPECT_EQ(platform.getDevice("fpga1"), nullptr);
    device->createCore().setRegisterCount("1200");
    device->createCore().addValidSlr("SLR0");
    EXPECT_EQ(platform.getFFCount(), "1200");
    HSTVector<std::string> slrs = {"kept"};
    platform.getValidSLRNames(slrs);
    EXPECT_EQ(slrs, (HSTVector<std::string>{"kept", "SLR0"}));
}

TEST(HPLPlatform, InterfaceDescriptionHasThreeSources) {
    HPLPlatform platform;
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
    HPLInterface* const second = platform.addInterface();
    second->setName("Eth");
    second->setType("100G");
    EXPECT_EQ(platform.getInterfaceDesc(), "PCIe gen3x16");
    first->setType("gen4x8");
    EXPECT_EQ(platform.getInterfaceDesc(), "PCIe gen4x8");
}

TEST(HPLPlatform, MemorySizesInGb) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getMemSizeInGb(5), 0) << "no memories, so no index is wrong";
    const std::pair<const char*, int> sizes[] = {
        {"16 GB", 16},          {"16GB", 16},  {"512MB", 512}, {"64", 64},
        {"8 GB of 16 GB x", 8}, {"4 GB2", 42},  // what stands behind is left in place
        {"  12 GB", 12},        {"-3 GB", -3},
    };
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        addMemory(platform, "", "", sizes[i].first);
        EXPECT_EQ(platform.getMemSizeInGb(i), sizes[i].second) << sizes[i].first;
    }
    EXPECT_THROW(platform.getMemSizeInGb(std::size(sizes)), std::out_of_range);
    for (const char* size : {"", "many GB", "DDR4 16 GB", "GB"}) {
        HPLPlatform wrong;
        addMemory(wrong, "", "", size);
        EXPECT_THROW(wrong.getMemSizeInGb(0), std::invalid_argument) << size;
        addMemory(wrong, "", "", "2 GB");
        EXPECT_EQ(wrong.getTotalMemSizeInGb(), 2) << size;
    }
}

TEST(HPLPlatform, TotalMemorySizeStaysWithinItsType) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getTotalMemSizeInGb(), 0);
    addMemory(platform, "", "", "8 GB");
    addMemory(platform, "", "", "99999999999 GB");
    EXPECT_EQ(platform.getTotalMemSizeInGb(), 8) << "a number that does not fit adds nothing";
    addMemory(platform, "", "", "2147483647 GB");
    addMemory(platform, "", "", "2147483647 GB");
    EXPECT_EQ(platform.getTotalMemSizeInGb(), INT_MAX);
}

TEST(HPLPlatform, MemoriesByTypeAndName) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getMemType(), "ddr4");
    EXPECT_EQ(platform.getMemSize(), "8 GB");
    EXPECT_EQ(platform.getMemorySize("bank0"), "16GB");
    HPLMemory* const first = addMemory(platform, "bank0", "", "");
    EXPECT_EQ(platform.getMemType(), "ddr4");
    EXPECT_EQ(platform.getMemorySize("bank0"), "16GB");
    first->setType("DDR5");
    first->setSize("32 GB");
    addMemory(platform, "bank1", "hbm", "256MB");
    addMemory(platform, "bank1", "DDR5", "64 GB");
    addMemory(platform, "bank2", "hbm", "256MB");
    EXPECT_EQ(platform.getMemType(), "DDR5");
    EXPECT_EQ(platform.getMemSize(), "32 GB");
    EXPECT_EQ(platform.getNumDDRs(), 2U);
    EXPECT_EQ(platform.getMemoryIndex("bank1"), 1);
    EXPECT_EQ(platform.getMemoryIndex("Bank1"), -1);
    EXPECT_EQ(platform.getMemorySize("bank1"), "256MB");
    EXPECT_EQ(platform.getMemoryTypeCount("hbm"), 2U);
    EXPECT_EQ(platform.getMemoryTypeCount("HBM"), 0U);
    HSTVector<std::string> types = {"hbm"};
    platform.getUniqueMemoryTypeStrings(types);
    EXPECT_EQ(types, (HSTVector<std::string>{"hbm", "DDR5", "hbm"}))
        << "what the caller's list held does not count";
    EXPECT_EQ(platform.getUniqueMemoryTypeCount(), 2U);
}

TEST(HPLPlatform, ConnectorsOfTheBoard) {
    HPLPlatform platform;
    HSTVector<std::string> names;
    platform.getDimmConnectors(names);
    platform.getBoardImgZipEntries(names);
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(platform.getBoardConnectionsString(), "");
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
    platform.getDimmConnectors(names);
    platform.getLockedDimmConnectors(names);
    platform.getConnectedDimmConnectors(names);
    platform.getBoardImgZipEntries(names);
    EXPECT_EQ(names,
              (HSTVector<std::string>{"D0", "D1", "D2", "D0", "D2", "D1", "D2", "h.png", "l.png"}));
    EXPECT_EQ(platform.getConnectorDisplayName("D1"), "slot D1");
    EXPECT_EQ(platform.getConnectorDisplayName("d1"), "");
    EXPECT_EQ(platform.getBoardConnectionsString(), "D1=8G D2=8G");
    EXPECT_EQ(platform.getLockedBoardConnectionsString(), "D2=8G");
    EXPECT_EQ(platform.getUnlockedBoardConnectionsString(), "D1=8G");
}

TEST(HPLPlatform, FilesAreFoundByTheirTypeText) {
    HPLPlatform platform;
    EXPECT_EQ(platform.getFile(HMAVPfmFileTypes::DCP), "");
    platform.addFile(HMAVPfmFileTypes::DCP, "first.dcp");
    platform.addFile("DCP", "second.dcp");
    platform.addFile("dcp", "third.dcp");
    platform.addFile("SIM_BINARY", "sim");
    EXPECT_EQ(platform.getFile("DCP"), "first.dcp");
    EXPECT_EQ(platform.getFile(HMAVPfmFileTypes::DCP), "first.dcp");
    EXPECT_EQ(platform.findFile("dcp")->getName(), "third.dcp");
    EXPECT_FALSE(platform.hasFile(HMAVPfmFileTypes::PDI));
    EXPECT_TRUE(platform.hasSimContent());
    EXPECT_TRUE(platform.removeFile(HMAVPfmFileTypes::DCP));
    EXPECT_EQ(platform.getFile("DCP"), "second.dcp");
    EXPECT_TRUE(platform.removeFile("DCP"));
    EXPECT_FALSE(platform.removeFile("DCP"));
    EXPECT_EQ(platform.getFiles().size(), 2U);
}

TEST(HPLPlatform, UnknownFileTypesAreReported) {
    const CapturedMessages messages;
    EXPECT_TRUE(HPLPlatform::validateFileType("IMPL_CONSTRS"));
    EXPECT_TRUE(messages.all.empty());
    EXPECT_FALSE(HPLPlatform::validateFileType("impl_constrs"));
    ASSERT_EQ(messages.all.size(), 1U);
    EXPECT_EQ(messages.text(), "@74-271@%s|impl_constrs\n");
    EXPECT_EQ(messages.all[0].group, "platform");
    EXPECT_EQ(messages.all[0].mask, ComMsgMgr::WARNING);
}

TEST(HPLPlatform, HpfmTextComesFromTheArchive) {
    const TempDir dir;
    HPLPlatform platform;
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

TEST(HPLPlatform, SwitchListsReplace) {
    HPLPlatform platform;
    platform.addYarcLinkXpSwitch("l");
    platform.addYarcCompileXpSwitch("c");
    HSTVector<std::string> list = {"old"};
    platform.getYarcLinkXpSwitches(list);
    EXPECT_EQ(list, (HSTVector<std::string>{"l"}));
    platform.getYarcCompileXpSwitches(list);
    EXPECT_EQ(list, (HSTVector<std::string>{"c"}));
}

constexpr const char* EMPTY_HARDWARE =
    R"({"versionMajor":"0","versionMinor":"0","hostArchitecture":"unknown","usesPR":"false",)"
    R"("acceleratorBinaryFormat":"qclbin2","acceleratorBinaryContent":"bitstream",)"
    R"("dcpFunctionStripped":"false","dcpEncrypted":"false","designIntent":{"dataCenter":"false",)"
    R"("embedded":"false","externalHost":"false","serverManaged":"false"},)"
    R"("unifiedPlatform":"false","expandablePlatform":"false","hardware":"false",)"
    R"("softwareEmulation":"false","hardwareEmulation":"false","hardwareEmuPlatform":"false",)"
    R"("usesNIFD":"false","generatedChangeList":"0","dpeHardware":{"arch":"NO_DPE",)"
    R"("npiBaseAddress":"0","shimRows":{"start":"4294967295","num":"0"},)"
    R"("coreRows":{"start":"4294967295","num":"0"},"memRows":{"start":"4294967295","num":"0"},)"
    R"("archMap":{"0":"NO_DPE","1":"DPE_A","2":"DPE_B","3":"DPE_C","4":"DPE_D","5":"DPE_E",)"
    R"("6":"DPE_F"}}})";

/// A platform with something in every member that it can write, except those of expandable ones.
void fill(HPLPlatform& platform) {
    platform.setHostInterface("pcie");
    platform.setState(1);
    platform.setTopModuleName("top");
    platform.addValidBinaryContentValue("bitstream");
    platform.addValidBinaryContentValue("pdi");
    platform.addYarcCompileXpSwitch("c");
    platform.addYarcLinkXpSwitch("l");
    platform.setDefaultOutputType("pdi");
    platform.createBoard().setName("b");
    platform.addDevice()->setFpgaPart("part");
    platform.addDevice();
    platform.addInterface()->setId("0");
    platform.addMemory();
    platform.addFile("DCP", "x");
    boost::property_tree::ptree extensions;
    extensions.push_back({"a.b", boost::property_tree::ptree("kept")});
    platform.setExtensions(extensions);
    platform.setVendor("v");
    platform.setBoardId("b");
    platform.setName("n");
    platform.setDescription("d");
    platform.setDetailedDescription("dd");
    platform.setPlatformFile("/f.pka");
    platform.setStatic(true);
    platform.setRM(true);
    platform.setDrBdInstName("dr");
    platform.setGeneratedName("g");
    platform.setGeneratedVersion("1");
    platform.setGeneratedIpChangeList("2");
    platform.setGeneratedSharedDataChangeList("3");
    platform.setGeneratedTimestamp("4");
    platform.setHasExternalSources(true);
    platform.setHasVMAContent(true);
    platform.setGeneratedByLink(true);
    platform.setGeneratedBySwEmuLink(true);
    platform.setIdCode("5");
    platform.setExtendedIdCode("6");
    platform.setFlashSize("7");
    platform.createDesignIDs();
    platform.addReconfigPartition();
    platform.addDpePartition();
    platform.addDesignIPInstance()->setVlnv("a:b:c:d");
    platform.addResource("LUT", "12");
    for (const char* name : {"clk0", "clk1"}) platform.addSystemClock()->setName(name);
    platform.addSystemClock()->setId(1);
    platform.setDefaultClockId(0);
    platform.addHardwareIPParam()->setName("p");
    platform.addBusInterface();
    platform.addNocConnectivity()->setInstRef("noc");
    platform.addFeatureRom();
}

TEST(HPLPlatform, WritesItselfInOrder) {
    EXPECT_EQ(compactJson(HPLPlatform()), EMPTY_HARDWARE);

    HPLPlatform platform;
    fill(platform);
    const std::string own =
        "versionMajor versionMinor hostArchitecture hostInterface usesPR platformState "
        "topModuleName acceleratorBinaryFormat acceleratorBinaryContent "
        "validAcceleratorBinaryContentValues yarcCompileXPSwitches yarcLinkXPSwitches "
        "dcpFunctionStripped dcpEncrypted defaultOutputType designIntent board devices interfaces "
        "memories files extensions ";
    const std::string identity =
        "vendor boardId name description detailedDescription uniqueName "
        "fpgaPart ";
    const std::string flags =
        "platformFile unifiedPlatform expandablePlatform hardware "
        "softwareEmulation hardwareEmulation hardwareEmuPlatform ";
    const std::string rest =
        "usesNIFD static rm drBdInstName generatedName generatedVersion generatedChangeList "
        "generatedIpChangeList generatedSharedDataChangeList generatedTimestamp "
        "hasExternalSources hasVMAContent genLink genSwEmuLink idCode extendedIdCode flash "
        "designIDs reconfigPartitionIDs dpeHardware dpePartitions designIpInstances resources "
        "systemClocks ipParameters busInterfaces nocConnectivity featureRoms ";
    platform.enableDynamicReload(true);
    const auto fixed = jsonTree(platform);
    EXPECT_EQ(keysOf(fixed), own + identity + flags + "dynamicReload " + rest);
    EXPECT_EQ(fixed.get<std::string>("validAcceleratorBinaryContentValues"), "bitstream,pdi");
    EXPECT_EQ(keysOf(fixed.get_child("extensions")), "a.b ");
    EXPECT_EQ(fixed.get_child("devices").size(), 2U);

    HPLPlatform expandable;
    fill(expandable);
    expandable.setExpandable(true);
    expandable.enableSegmentedConfiguration(true);
    expandable.addInterface();
    expandable.getDpeHardware().setNumMemRows(2);
    HMAVDesignIntentStorage intent;
    intent.setServerManaged(true, true);
    expandable.setExplicitDesignIntent(intent);
    const auto open = jsonTree(expandable);
    EXPECT_EQ(keysOf(open),
              own + identity + "interfaceDescription " + flags +
                  "segmentedConfiguration maxAXIMMManagers maxAXIMMSubordinates maxInterrupts " +
                  rest);
    EXPECT_EQ(open.get_child("interfaces").size(), 1U) << "an empty one is skipped";
    EXPECT_EQ(open.get<std::string>("dpeHardware.memRows.num"), "2");
}

TEST(HPLPlatform, MarksEveryClockOfTheDefaultName) {
    HPLPlatform platform;
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

TEST(HPLPlatform, HandsOutItsExtensions) {
    HPLPlatform platform;
    EXPECT_TRUE(platform.getExtMetaJsonAsPtree().empty());
    boost::property_tree::ptree tree;
    tree.push_back({"a.b", boost::property_tree::ptree("1")});
    platform.setExtensions(tree);
    EXPECT_EQ(platform.getExtMetaJsonAsPtree(), tree);
    EXPECT_EQ(platform.getExtMetaJsonAsString(), "{\n    \"a.b\": \"1\"\n}\n");
}

}  // namespace
