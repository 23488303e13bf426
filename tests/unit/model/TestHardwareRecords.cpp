// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDesignIPInstance.h"
#include "mav_platform/HMAVHardwareBusInterface.h"
#include "mav_platform/HMAVHardwareIPParam.h"
#include "mav_platform/HMAVHardwareNocConnectivity.h"
#include "mav_platform/HMAVReconfigPartition.h"
#include "mav_platform/HMAVSystemClock.h"
#include "support/Doubles.h"
#include "support/Json.h"

namespace {

TEST(HMAVSystemClock, StatusIsComparedExactly) {
    const struct {
        const char* status;
        bool fixed, scalable;
    } cases[] = {{"fixed", true, false},
                 {"scalable", false, true},
                 {"changeable", false, true},
                 {"Fixed", false, false},
                 {"", false, false}};
    for (const auto& test : cases) {
        HMAVSystemClock clock;
        clock.setStatus(test.status);
        EXPECT_EQ(clock.isFixed(), test.fixed) << test.status;
        EXPECT_EQ(clock.isScalable(), test.scalable) << test.status;
    }
}

TEST(HMAVSystemClock, WritesItsMembersInOrder) {
    HMAVSystemClock clock;
    EXPECT_EQ(compactJson(clock), R"({"id":"0"})");
    clock.setStatus("fixed");
    clock.setNormalizedPeriod(".5");
    clock.setPeriod("3.3");
    clock.setCompRef("c");
    clock.setInstRef("i");
    clock.setFrequency("300.0");
    clock.setId(4294967295U);
    clock.setOrigName("o");
    clock.setName("n");
    clock.setDisplayName("PL 4294967295");
    EXPECT_EQ(compactJson(clock),
              R"({"name":"n","origName":"o","id":"4294967295","frequency":"300.0","instRef":"i",)"
              R"("compRef":"c","period":"3.3","normalizedPeriod":".5","status":"fixed"})");
}

TEST(HMAVHardwareBusInterface, WritesItsMembersInOrder) {
    HMAVHardwareBusInterface bus;
    bus.addAddressSegment();
    EXPECT_EQ(compactJson(bus),
              R"({"dataWidth":"0","numIdBits":"0","addressSegments":[{"index":"0",)"
              R"("maxMasters":"0","readBwUsed":"0","writeBwUsed":"0","interleave":"0"}]})");

    HMAVHardwareBusInterface whole;
    whole.setName("1");
    whole.setMode("2");
    whole.setInstRef("3");
    whole.setCompRef("4");
    whole.setBusTypeRef("5");
    whole.setBusInterfaceRef("6");
    whole.setClockRef("7");
    whole.setResetRef("8");
    whole.setMemPort("9");
    whole.setSPTag("10");
    whole.setSLR("11");
    whole.setMemoryInstance("12");
    whole.setDataWidth(-13);
    whole.setNumIdBits(4294967295U);
    whole.setAddressSegment("15");
    whole.setDirection("16");
    whole.setIsrId("17");
    whole.setCategory("18");
    EXPECT_EQ(compactJson(whole),
              R"({"name":"1","mode":"2","instRef":"3","compRef":"4","typeRef":"5",)"
              R"("interfaceRef":"6","clockRef":"7","resetRef":"8","memPort":"9","spTag":"10",)"
              R"("slr":"11","memoryInstance":"12","dataWidth":"-13","numIdBits":"4294967295",)"
              R"("addressSegment":"15","direction":"16","isrId":"17","category":"18"})");
}

TEST(HMAVHardwareAddressSegment, WritesItsMembersInOrder) {
    HMAVHardwareAddressSegment segment;
    segment.setBaseName("1");
    segment.setIndex(4294967295U);
    segment.setMemoryInstance("3");
    segment.setAuto("4");
    segment.setSPTag("5");
    segment.setSLR("6");
    segment.setMaxMasters(7);
    segment.setName("8");
    segment.setInstRef("9");
    segment.setRegion("10");
    segment.setReadBwUsed(11);
    segment.setWriteBwUsed(12);
    segment.setInterleave(13);
    EXPECT_EQ(compactJson(segment),
              R"({"baseName":"1","index":"4294967295","memoryInstance":"3","auto":"4",)"
              R"("spTag":"5","slr":"6","maxMasters":"7","name":"8","instRef":"9","region":"10",)"
              R"("readBwUsed":"11","writeBwUsed":"12","interleave":"13"})");
}

TEST(HMAVHardwareBusInterface, SegmentsKeepTheirPlaceAsTheListGrows) {
    HMAVHardwareBusInterface bus;
    HMAVHardwareAddressSegment* const first = bus.addAddressSegment();
    first->setName("first");
    for (int i = 0; i < 1000; ++i) bus.addAddressSegment();
    EXPECT_EQ(bus.getAddressSegments().size(), 1001U);
    EXPECT_EQ(bus.getAddressSegments().front(), first);
    EXPECT_EQ(first->getName(), "first");
}

TEST(HMAVDesignIPInstance, RefusesAKeyTwice) {
    HMAVDesignIPInstance ip;
    ip.addConfigParam("CONFIG.WIDTH", "64");
    EXPECT_THROW_MSG(
        ip.addConfigParam("CONFIG.WIDTH", "32"), HEXAlgException,
        "Attempt to readd Design IP Instance Config Param key: 'CONFIG.WIDTH' is not allowed!");
    ASSERT_EQ(ip.getConfigParams().size(), 1U);
    EXPECT_EQ(ip.getConfigParams()[0].second, "64");
}

TEST(HMAVDesignIPInstance, NameIsTheThirdFieldOfTheVlnv) {
    HMAVDesignIPInstance ip;
    for (const auto& [vlnv, name] : {std::pair{"v:l:ddr4:1.0", "ddr4"},
                                     {"v:l:ddr4", "ddr4"},
                                     {"v:l::1", ""},
                                     {"v:l", ""},
                                     {"", ""}}) {
        ip.setVlnv(vlnv);
        EXPECT_EQ(ip.getName(), name) << vlnv;
    }
}

TEST(HMAVDesignIPInstance, WritesParametersUnderTheirWholeNames) {
    HMAVDesignIPInstance ip;
    EXPECT_EQ(compactJson(ip), "{}");
    ip.setVlnv("v:l:ddr4:1.0");
    ip.setInstance("ddr4_0");
    ip.addConfigParam("Z.WIDTH", "64");
    ip.addConfigParam("EMPTY", "");
    ip.addConfigParam("A", "1");
    EXPECT_EQ(compactJson(ip), R"({"vlnv":"v:l:ddr4:1.0","instance":"ddr4_0","name":"ddr4",)"
                               R"("configuration":{"Z.WIDTH":"64","A":"1"}})");
}

TEST(HMAVHardwareIPParam, WritesItsMembersInOrder) {
    HMAVHardwareIPParam param;
    EXPECT_EQ(compactJson(param), "{}");
    param.setName("1");
    param.setValue("2");
    param.setInstRef("3");
    param.setCompRef("4");
    param.setValid("5");
    EXPECT_EQ(compactJson(param),
              R"({"name":"1","value":"2","instRef":"3","compRef":"4","valid":"5"})");
}

TEST(HMAVHardwareNocConnectivity, WritesItsNames) {
    HMAVHardwareNocConnectivity noc;
    EXPECT_EQ(compactJson(noc), "{}");
    noc.setInstRef("noc_0");
    noc.addBusInterface("b");
    noc.addBusInterface("");
    noc.addBusInterface("a");
    EXPECT_EQ(compactJson(noc), R"({"instRef":"noc_0","busInterfaces":["b","a"]})");
}

TEST(HMAVReconfigPartition, WritesItsNumbersInOrder) {
    HMAVReconfigPartition ids;
    ids.setDesignID(1);
    ids.setParentID(2);
    ids.setNodeID(3);
    ids.setDPEPlInterfaceID(4);
    ids.setDPENodeID(5);
    ids.setDPEUniqueID(6);
    ids.setDPEPuID(7);
    ids.setFunctionID(4294967295U);
    EXPECT_EQ(compactJson(ids),
              R"({"designID":"1","parentID":"2","nodeID":"3","dpengineIDs":{"plInterfaceID":"4",)"
              R"("nodeID":"5","uniqueID":"6","puID":"7"},"functionID":"4294967295"})");
}

}  // namespace
