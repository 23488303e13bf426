// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HPLBoard.h"
#include "mav_platform/HPLDevice.h"
#include "mav_platform/HPLFile.h"
#include "mav_platform/HPLInterface.h"
#include "mav_platform/HPLMemory.h"
#include "support/Json.h"

namespace {

TEST(HPLBoard, WritesItsPartsInOrder) {
    HPLBoard board;
    board.createPCIeId();
    board.addDriver();
    EXPECT_EQ(compactJson(board), "{}") << "parts without content leave no trace";
    board.setName("h90");
    board.setVendor("veltrin");
    board.setPart("p");
    board.setBoardPart("veltrin:h90:1.0");
    board.setImageFileHdpi("images/h.png");
    board.setImageFileMdpi("m.png");
    board.setImageFileLdpi("l.png");
    HPLBoard::DimmConnector* const connector = board.addDimmConnector();
    connector->setName("DIMM0");
    connector->setDisplayName("slot 0");
    connector->setType("ddr4");
    connector->setConnectedName("8G");
    connector->setConnectedDisplayName("8 GB module");
    connector->setConnected(true);
    board.addDimmConnector();
    HPLDriver* const driver = board.addDriver();
    driver->setName("mcd");
    driver->setType("kernel");
    board.createPCIeId().setVendor("0x1d0f");
    board.createPCIeId().setDevice("0xf000");
    board.createPCIeId().setSubsystem("0x51");
    board.createPCIeId().setFeatureId("0x1");
    EXPECT_EQ(
        compactJson(board),
        R"({"name":"h90","vendor":"veltrin","part":"p","boardPart":"veltrin:h90:1.0",)"
        R"("imageFileHdpi":"images\/h.png","imageFileMdpi":"m.png","imageFileLdpi":"l.png",)"
        R"("connectors":[{"name":"DIMM0","displayName":"slot 0","type":"ddr4","connectedName":"8G",)"
        R"("connectedDisplayName":"8 GB module","connected":"true","locked":"false"},)"
        R"({"connected":"false","locked":"false"}],"drivers":[{"name":"mcd","type":"kernel"}],)"
        R"("pcie":{"vendor":"0x1d0f","device":"0xf000","subsystem":"0x51","featureId":"0x1"}})");
}

TEST(HPLDevice, WritesPartClocksAndCore) {
    HPLDevice device;
    EXPECT_EQ(compactJson(device), R"({"numSLRs":"0"})");
    EXPECT_EQ(device.getCore(), nullptr);
    device.setName("fpga0");
    device.setType("fpga");
    device.setFpgaPart("xqh90-2L");
    HPLDevice::Part& part = device.getPart();
    part.setName("1");
    part.setArchitecture("2");
    part.setDevice("3");
    part.setPackage("4");
    part.setSpeedGrade("5");
    part.setTempGrade("6");
    part.setStaPower("7");
    part.setRevision("8");
    HPLDevice::Clock* const clock = device.addClock();
    clock->setName("c");
    clock->setFrequency("300");
    device.setNumSLRs(3);
    device.createCore();
    EXPECT_EQ(compactJson(device),
              R"({"name":"fpga0","type":"fpga","fpgaPart":"xqh90-2L","part":{"name":"1",)"
              R"("architecture":"2","device":"3","package":"4","speedGrade":"5","tempGrade":"6",)"
              R"("staPower":"7","revision":"8"},"scalableSystemClocks":[{"name":"c",)"
              R"("frequency":"300"}],"core":{"numComputeUnits":"0"},"numSLRs":"3"})");
}

TEST(HPLCore, WritesItsMembersInOrder) {
    HPLCore core;
    core.setName("1");
    core.setType("2");
    core.setInstPath("3");
    core.setSourceViewInstPath("4");
    core.setParentRMInstPath("5");
    core.setReconfigModuleName("6");
    core.setDrBDName("7");
    core.setVlnv("8");
    core.setClockFreq("9");
    core.setNumComputeUnits(10);
    core.setBramCount("11");
    core.setDspCount("12");
    core.setLutCount("13");
    core.setUramCount("14");
    core.setRegisterCount("15");
    core.addValidSlr("SLR0");
    core.addValidSlr("SLR1");
    core.addAvailableResource("LUT", "16");
    HPLCore::PBlock* const block = core.addPBlock();
    block->setName("pb");
    block->addResource("DSP", "17");
    core.addPBlock();
    core.addConfigParam("k.l", "18");
    core.addPort()->setName("p");
    EXPECT_EQ(compactJson(core),
              R"({"name":"1","type":"2","instPath":"3","sourceViewInstPath":"4",)"
              R"("parentRMInstPath":"5","reconfigModuleName":"6","drBDName":"7","vlnv":"8",)"
              R"("clockFreq":"9","numComputeUnits":"10","bramCount":"11","dspCount":"12",)"
              R"("lutCount":"13","uramCount":"14","registerCount":"15",)"
              R"("validSlrs":["SLR0","SLR1"],"availableResources":[{"name":"LUT","value":"16"}],)"
              R"("pBlocks":[{"name":"pb","resources":[{"name":"DSP","value":"17"}]}],)"
              R"("configParams":[{"name":"k.l","value":"18"}],"ports":[{"name":"p"}]})");
}

TEST(HPLPort, WritesItsMembersInOrder) {
    HPLPort port;
    port.setName("1");
    port.setType("2");
    port.setMode("3");
    port.setBase("4");
    port.setRange("5");
    port.setDataWidth("6");
    port.setProtocol("7");
    port.setIdWidth("8");
    port.setAddrWidth("9");
    port.setUserWidth("10");
    port.setAddrOffset("11");
    port.setAddrRange("12");
    port.setMaxBurstLength("13");
    port.setFrequency("14");
    port.setPolarity("15");
    port.setDirection("16");
    EXPECT_EQ(compactJson(port),
              R"({"name":"1","type":"2","mode":"3","base":"4","range":"5","dataWidth":"6",)"
              R"("protocol":"7","idWidth":"8","addrWidth":"9","userWidth":"10",)"
              R"("addrOffset":"11","addrRange":"12","maxBurstLength":"13","frequency":"14",)"
              R"("polarity":"15","direction":"16"})");
}

TEST(Board, SmallRecordsWriteTheirMembersInOrder) {
    HPLMemory memory;
    EXPECT_EQ(compactJson(memory), R"({"lowAddress":"0","highAddress":"0"})");
    memory.setName("m");
    memory.setType("ddr4");
    memory.setSize("16GB");
    memory.addConfigParam("k", "v");
    memory.setHighAddress(18446744073709551615U);
    EXPECT_EQ(compactJson(memory),
              R"({"name":"m","type":"ddr4","size":"16GB","configParams":[{"name":"k",)"
              R"("value":"v"}],"lowAddress":"0","highAddress":"18446744073709551615"})");

    HPLInterface interface;
    interface.setId("1");
    interface.setName("PCIe");
    interface.setType("gen3x16");
    EXPECT_EQ(compactJson(interface), R"({"id":"1","name":"PCIe","type":"gen3x16"})");

    HPLFile file;
    file.setName("a.dcp");
    file.setType("DCP");
    file.setUsedIn("impl");
    file.setProcessingOrder("late");
    EXPECT_EQ(compactJson(file),
              R"({"name":"a.dcp","type":"DCP","usedIn":"impl","processingOrder":"late"})");
}

}  // namespace
