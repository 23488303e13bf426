// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDesignIPInstance.h"
#include "mav_platform/HMAVHardwareNocConnectivity.h"
#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HPLBoard.h"
#include "support/Doubles.h"
#include "support/Json.h"

namespace {

TEST(Records, MembersThatNoSampleFills) {
    HPLBoard board;
    board.createPCIeId();
    board.addDriver();
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
        {board, "{}"},
        {software, R"({"linuxRootFileSystemPath":"rootfs"})"},
        {group, R"({"osHypervisorGuest":"false","osBSPIncludePaths":"1","osBSPLibraryPaths":"2",)"
                R"("osSysRoot":"3"})"},
        {ip, R"({"configuration":{"Z.WIDTH":"64"}})"},
        {noc, R"({"busInterfaces":["b","a"]})"},
    };
    for (const auto& [record, text] : records) EXPECT_EQ(compactJson(record), text);
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
