// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmuFeatureRom.h"

#include "mav_host/HEXError.h"

namespace {

void check(unsigned index) {
    if (index < HMAVEmuFeatureRom::CDMA_COUNT) return;
    throw HEXAlgException("The CDMA base address " + std::to_string(index) +
                          " does not exist; the index is 0 to 3");
}

}  // namespace

std::uint64_t HMAVEmuFeatureRom::getCDMABaseAddress(unsigned index) const {
    check(index);
    return cdmaBaseAddress_[index];
}

void HMAVEmuFeatureRom::setCDMABaseAddress(unsigned index, std::uint64_t value) {
    check(index);
    cdmaBaseAddress_[index] = value;
}
