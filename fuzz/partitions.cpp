// SPDX-License-Identifier: Apache-2.0
// The partitions file of an array-engine project.
#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDpePartitionsJsonReader.h"
#include "mav_platform/HPLPlatform.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::file("dpe_partition.json", data, size);
    const HPLPlatform platform;
    const std::list<HMAVDpePartition>& partitions = platform.getDpePartitions();
    try {
        HMAVDpePartitionsJsonReader reader(&platform);
        reader.parse(path);
        const std::size_t count = partitions.size();
        reader.parse(path);
        fuzz::require(partitions.size() == count, "equal partitions were added again");
    } catch (const HEXAlgException&) {
        fuzz::require(partitions.empty(), "a refused file left partitions");
    }
    return 0;
}
