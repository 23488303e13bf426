// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDesignIPInstance.h"
#include "mav_platform/HMAVHardwareBusInterface.h"
#include "mav_platform/HMAVHardwareNocConnectivity.h"
#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSystemClock.h"
#include "mav_platform/HPLBoard.h"
#include "mav_platform/HPLDevice.h"
#include "mav_platform/HPLMemory.h"
#include "support/Doubles.h"
#include "support/Json.h"
#include "support/Row.h"

namespace {

TEST(Records, EmptyAndExtremeOnesInTheDocument) {
    HPLBoard bare, board;
    bare.createPCIeId();
    bare.addDriver();
    board.addDimmConnector()->setLocked(true);
    HPLDevice device;
    device.createCore().addPBlock();
    HPLMemory memory;
    memory.setHighAddress(18446744073709551615U);
    HMAVSystemClock clock;
    clock.setId(4294967295U);
    clock.setDisplayName("left out");
    HMAVHardwareBusInterface bus;
    bus.setInstRef("i");
    bus.setMemoryInstance("m");
    bus.setDataWidth(-13);
    bus.setNumIdBits(4294967295U);
    bus.addAddressSegment();
    HMAVDesignIPInstance ip;
    ip.addConfigParam("Z.WIDTH", "64");
    ip.addConfigParam("EMPTY", "");
    HMAVHardwareNocConnectivity noc;
    for (const char* name : {"b", "", "a"}) noc.addBusInterface(name);
    HMAVSoftwarePlatform software;
    software.setLinuxRootFileSystemPath("rootfs");
    HMAVProcessorGroup group;
    group.setBSPIncludePaths("1");
    group.setBSPLibraryPaths("2");
    group.setSysRoot("3");
    const std::pair<const mav_platform::JSONSerializable&, const char*> records[] = {
        {bare, "{}"},
        {board, R"({"connectors":[{"connected":"false","locked":"true"}]})"},
        {device, R"({"core":{"numComputeUnits":"0"},"numSLRs":"0"})"},
        {memory, R"({"lowAddress":"0","highAddress":"18446744073709551615"})"},
        {clock, R"({"id":"4294967295"})"},
        {bus, R"({"instRef":"i","memoryInstance":"m","dataWidth":"-13","numIdBits":"4294967295",)"
              R"("addressSegments":[{"index":"0","maxMasters":"0","readBwUsed":"0",)"
              R"("writeBwUsed":"0","interleave":"0"}]})"},
        {software, R"({"linuxRootFileSystemPath":"rootfs"})"},
        {group, R"({"osHypervisorGuest":"false","osBSPIncludePaths":"1","osBSPLibraryPaths":"2",)"
                R"("osSysRoot":"3"})"},
        {ip, R"({"configuration":{"Z.WIDTH":"64"}})"},
        {noc, R"({"busInterfaces":["b","a"]})"},
    };
    for (const auto& [record, text] : records) EXPECT_EQ(compactJson(record), text);
}

TEST(HMAVSystemClock, StatusIsComparedExactly) {
    for (const auto& [status, kind] : {std::pair{"fixed", "true|false"},
                                       {"scalable", "false|true"},
                                       {"changeable", "false|true"},
                                       {"Fixed", "false|false"},
                                       {"", "false|false"}}) {
        HMAVSystemClock clock;
        clock.setStatus(status);
        EXPECT_EQ(row(clock.isFixed(), clock.isScalable()), kind) << status;
    }
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

TEST(HMAVDesignIPInstance, RefusesAKeyTwiceAndHasTheNameInItsVlnv) {
    HMAVDesignIPInstance ip;
    ip.addConfigParam("CONFIG.WIDTH", "64");
    EXPECT_THROW_MSG(
        ip.addConfigParam("CONFIG.WIDTH", "32"), HEXAlgException,
        "Attempt to readd Design IP Instance Config Param key: 'CONFIG.WIDTH' is not allowed!");
    ASSERT_EQ(ip.getConfigParams().size(), 1U);
    EXPECT_EQ(ip.getConfigParams()[0].second, "64");
    for (const auto& [vlnv, name] : {std::pair{"v:l:ddr4:1.0", "ddr4"},
                                     {"v:l:ddr4", "ddr4"},
                                     {"v:l::1", ""},
                                     {"v:l", ""},
                                     {"", ""}}) {
        ip.setVlnv(vlnv);
        EXPECT_EQ(ip.getName(), name) << vlnv;
    }
}

}  // namespace
