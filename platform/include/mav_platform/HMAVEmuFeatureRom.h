// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "mav_host/Export.h"

/// Feature ROM values that count in emulation. Created and owned by HMAVEmulations.
class MAV_API HMAVEmuFeatureRom {
  public:
    static constexpr unsigned CDMA_COUNT = 4;

    /// The platform's VBNV, of any length.
    const std::string& getVBNVName() const { return vbnvName_; }
    void setVBNVName(std::string value) { vbnvName_ = std::move(value); }
    std::uint32_t getFeatureBitMap() const { return featureBitMap_; }
    void setFeatureBitMap(std::uint32_t value) { featureBitMap_ = value; }
    /// Base address of one CDMA engine, index 0 to 3. Both throw HEXAlgException "The CDMA base
    /// address INDEX does not exist; the index is 0 to 3" for any other index.
    std::uint64_t getCDMABaseAddress(unsigned index) const;
    void setCDMABaseAddress(unsigned index, std::uint64_t value);

  private:
    std::string vbnvName_;
    std::uint32_t featureBitMap_ = 0;
    std::array<std::uint64_t, CDMA_COUNT> cdmaBaseAddress_{};
};
