// SPDX-License-Identifier: Apache-2.0
// The partitions file of an array-engine project.
#include "formats/array_engine/HMAVDpePartitionsJsonReader.h"
#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDpePartition.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::file("dpe_partition.json", data, size);
    std::list<HMAVDpePartition> partitions;
    try {
        HMAVDpePartitionsJsonReader reader(partitions);
        reader.parse(path);
        const std::size_t count = partitions.size();
        reader.parse(path);
        fuzz::require(partitions.size() == count, "equal partitions were added again");
    } catch (const HEXAlgException&) {
        fuzz::require(partitions.empty(), "a refused file left partitions");
    }
    return 0;
}
