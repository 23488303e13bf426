// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// What the feature ROM of the platform says. Created and owned by the hardware platform. A value
/// that is refused leaves the old one in place.
class MAV_API HMAVHardwareFeatureRom : public mav_platform::JSONSerializable {
  public:
    static constexpr unsigned NAME_SIZE = 64;
    static constexpr unsigned CDMA_COUNT = 4;

    HMAVHardwareFeatureRom() = default;

    std::uint32_t getMajorVersion() const { return majorVersion_; }
    void setMajorVersion(std::uint32_t value) { majorVersion_ = value; }
    std::uint32_t getMinorVersion() const { return minorVersion_; }
    void setMinorVersion(std::uint32_t value) { minorVersion_ = value; }
    /// Build id of the hardware design tool.
    std::uint32_t getCorvelBuildID() const { return corvelBuildID_; }
    void setCorvelBuildID(std::uint32_t value) { corvelBuildID_ = value; }
    /// Build id of the ROM IP.
    std::uint64_t getIpBuildID() const { return ipBuildID_; }
    void setIpBuildID(std::uint64_t value) { ipBuildID_ = value; }
    /// Creation time in seconds since 1970.
    std::uint64_t getTimeSinceEpoch() const { return timeSinceEpoch_; }
    void setTimeSinceEpoch(std::uint64_t value) { timeSinceEpoch_ = value; }

    /// The device part, at most 63 characters. The setter throws HEXDataException "The FPGAPartName
    /// specified for the Feature ROM is not a 64 char null terminated string: '" + text + "'" when
    /// none of the 64 bytes is null.
    std::string getFPGAPartName() const { return fpgaPartName_.data(); }
    void setFPGAPartName(const char (&name)[NAME_SIZE]);
    /// The platform's VBNV; refused as the part name is, with "VBNVName" in the text.
    std::string getVBNVName() const { return vbnvName_.data(); }
    void setVBNVName(const char (&name)[NAME_SIZE]);

    std::uint32_t getDDRChannelCount() const { return ddrChannelCount_; }
    void setDDRChannelCount(std::uint32_t value) { ddrChannelCount_ = value; }
    std::uint32_t getDDRChannelSize() const { return ddrChannelSize_; }
    void setDDRChannelSize(std::uint32_t value) { ddrChannelSize_ = value; }
    /// Base address of the dynamic region.
    std::uint64_t getDrBaseAddress() const { return drBaseAddress_; }
    void setDrBaseAddress(std::uint64_t value) { drBaseAddress_ = value; }
    std::uint32_t getFeatureBitMap() const { return featureBitMap_; }
    void setFeatureBitMap(std::uint32_t value) { featureBitMap_ = value; }

    /// The platform interface UUID as text in its usual form, lower case.
    std::string getUUID() const;
    const std::array<std::uint8_t, 16>& getUUIDBytes() const { return uuid_; }
    /// Throws HEXDataException "Unable to convert string to Feature ROM UUID: '" + text + "'".
    void setUUID(const std::string& text);

    /// Always 4.
    unsigned getCDMABaseAddressSize() const { return CDMA_COUNT; }
    /// Base address of one CDMA engine, index 0 to 3. Both throw HEXAlgException "Attempt to set
    /// the CDMA Base Address on the DSA XML DOM object using index '" + index + "' which is out of
    /// bounds (max is: '4')" for any other index.
    std::uint64_t getCDMABaseAddress(unsigned index) const;
    void setCDMABaseAddress(unsigned index, std::uint64_t value);

    const std::optional<int>& getMaxTempLimit() const { return maxTempLimit_; }
    void setMaxTempLimit(int value) { maxTempLimit_ = value; }
    const std::optional<int>& getMaxPowerLimit() const { return maxPowerLimit_; }
    void setMaxPowerLimit(int value) { maxPowerLimit_ = value; }

    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::uint32_t majorVersion_ = 0;
    std::uint32_t minorVersion_ = 0;
    std::uint32_t corvelBuildID_ = 0;
    std::uint32_t ddrChannelCount_ = 0;
    std::uint32_t ddrChannelSize_ = 0;
    std::uint32_t featureBitMap_ = 0;
    std::uint64_t ipBuildID_ = 0;
    std::uint64_t timeSinceEpoch_ = 0;
    std::uint64_t drBaseAddress_ = 0;
    std::array<char, NAME_SIZE> fpgaPartName_{};
    std::array<char, NAME_SIZE> vbnvName_{};
    std::array<std::uint8_t, 16> uuid_{};
    std::array<std::uint64_t, CDMA_COUNT> cdmaBaseAddress_{};
    std::optional<int> maxTempLimit_;
    std::optional<int> maxPowerLimit_;
};
