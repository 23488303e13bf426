// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/partitionsFault.h"

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVReconfigurablePartition.h"

namespace mav_platform {
namespace {

std::string faultOf(const HMAVHardwarePlatform& hardware) {
    try {
        hardware.initDpePartitions();
        return "";
    } catch (const HEXError& error) {
        return error.what();
    }
}

}  // namespace

std::string partitionsFault(const HMAVPlatform& platform) {
    HSTVector<const HMAVHardwarePlatform*> all{platform.getHardwarePlatform(),
                                               platform.getHardwareEmulationPlatform()};
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform.getReconfigurablePartitions(partitions);
    for (const HMAVReconfigurablePartition* partition : partitions) {
        all.push_back(partition->getHardwarePlatform());
        all.push_back(partition->getHardwareEmulationPlatform());
    }
    for (const HMAVHardwarePlatform* hardware : all) {
        std::string fault = hardware != nullptr ? faultOf(*hardware) : "";
        if (!fault.empty()) return fault;
    }
    return "";
}

}  // namespace mav_platform
