// SPDX-License-Identifier: Apache-2.0
#include <cstdint>

#include "formats/Fields.h"
#include "formats/metadata/HMAVDsaJsonReaderImpl.h"
#include "mav_platform/HMAVHardwareAddressSegment.h"
#include "mav_platform/HMAVHardwareBusInterface.h"
#include "mav_platform/HMAVHardwareFeatureRom.h"
#include "mav_platform/HMAVHardwareIPParam.h"
#include "mav_platform/HMAVHardwareNocConnectivity.h"
#include "mav_platform/HMAVSystemClock.h"
#include "mav_platform/HPLPlatform.h"

using namespace mav_platform::metadata;

void HMAVDsaJsonReaderImpl::parseSystemClocks_(HPLPlatform& platform, const Node& node,
                                               Trail& trail) {
    using Clock = HMAVSystemClock;
    static constexpr Field<Clock> FIELDS[] = {
        {"name", &text<&Clock::setName>},
        {"origName", &text<&Clock::setOrigName>},
        {"frequency", &text<&Clock::setFrequency>},
        {"instRef", &text<&Clock::setInstRef>},
        {"compRef", &text<&Clock::setCompRef>},
        {"period", &text<&Clock::setPeriod>},
        {"normalizedPeriod", &text<&Clock::setNormalizedPeriod>},
        {"status", &text<&Clock::setStatus>},
        {"id", &unsignedNumber<&Clock::setId>},
    };
    readItems(node, trail, [&](const Node& item) {
        Clock* clock = platform.addSystemClock();
        readFields(FIELDS, item, *clock, trail);
        const auto isDefault = item.find("default");
        if (isDefault && mav_platform::json::toBool(isDefault->data())) {
            platform.setDefaultClockId(clock->getId());
        }
    });
}

void HMAVDsaJsonReaderImpl::parseBusInterfaces_(HPLPlatform& platform, const Node& node,
                                                Trail& trail) {
    items<&parseBusInterface_>(platform, node, trail);
}

void HMAVDsaJsonReaderImpl::parseBusInterface_(HPLPlatform& platform, const Node& node,
                                               Trail& trail) {
    using Bus = HMAVHardwareBusInterface;
    static constexpr Field<Bus> FIELDS[] = {
        {"name", &text<&Bus::setName>},
        {"mode", &text<&Bus::setMode>},
        {"instRef", &text<&Bus::setInstRef>},
        {"compRef", &text<&Bus::setCompRef>},
        {"typeRef", &text<&Bus::setBusTypeRef>},
        {"interfaceRef", &text<&Bus::setBusInterfaceRef>},
        {"clockRef", &text<&Bus::setClockRef>},
        {"resetRef", &text<&Bus::setResetRef>},
        {"memPort", &text<&Bus::setMemPort>},
        {"spTag", &text<&Bus::setSPTag>},
        {"slr", &text<&Bus::setSLR>},
        {"memoryInstance", &text<&Bus::setMemoryInstance>},
        {"numIdBits", &unsignedNumber<&Bus::setNumIdBits>},
        {"direction", &text<&Bus::setDirection>},
        {"isrId", &text<&Bus::setIsrId>},
        {"category", &text<&Bus::setCategory>},
        {"addressSegment", &text<&Bus::setAddressSegment>},
        {"dataWidth", &integer<&Bus::setDataWidth>},
        {"addressSegments", &items<&parseAddressSegment_>},
    };
    readFields(FIELDS, node, *platform.addBusInterface(), trail);
}

void HMAVDsaJsonReaderImpl::parseAddressSegment_(HMAVHardwareBusInterface& bus, const Node& node,
                                                 Trail& trail) {
    using Segment = HMAVHardwareAddressSegment;
    static constexpr Field<Segment> FIELDS[] = {
        {"baseName", &text<&Segment::setBaseName>},
        {"index", &unsignedNumber<&Segment::setIndex>},
        {"memoryInstance", &text<&Segment::setMemoryInstance>},
        {"auto", &text<&Segment::setAuto>},
        {"spTag", &text<&Segment::setSPTag>},
        {"slr", &text<&Segment::setSLR>},
        {"maxMasters", &unsignedNumber<&Segment::setMaxMasters>},
        {"name", &text<&Segment::setName>},
        {"instRef", &text<&Segment::setInstRef>},
        {"region", &text<&Segment::setRegion>},
        {"readBwUsed", &unsignedNumber<&Segment::setReadBwUsed>},
        {"writeBwUsed", &unsignedNumber<&Segment::setWriteBwUsed>},
        {"interleave", &unsignedNumber<&Segment::setInterleave>},
    };
    readFields(FIELDS, node, *bus.addAddressSegment(), trail);
}

void HMAVDsaJsonReaderImpl::parseNocConnectivity_(HPLPlatform& platform, const Node& node,
                                                  Trail& trail) {
    using Noc = HMAVHardwareNocConnectivity;
    static constexpr Field<Noc> FIELDS[] = {
        {"instRef", &text<&Noc::setInstRef>},
        {"busInterfaces", &texts<&Noc::addBusInterface>},
    };
    readItems(node, trail, [&](const Node& item) {
        readFields(FIELDS, item, *platform.addNocConnectivity(), trail);
    });
}

void HMAVDsaJsonReaderImpl::parseIPParams_(HPLPlatform& platform, const Node& node, Trail& trail) {
    using Param = HMAVHardwareIPParam;
    static constexpr Field<Param> FIELDS[] = {
        {"name", &text<&Param::setName>},       {"value", &text<&Param::setValue>},
        {"valid", &text<&Param::setValid>},     {"compRef", &text<&Param::setCompRef>},
        {"instRef", &text<&Param::setInstRef>},
    };
    readItems(node, trail, [&](const Node& item) {
        readFields(FIELDS, item, *platform.addHardwareIPParam(), trail);
    });
}

namespace {

using Rom = HMAVHardwareFeatureRom;
using mav_platform::json::Node;

/// The setters take 64 bytes and refuse those without a null, so a longer text is cut to 64 of its
/// own and refused there.
template <void (Rom::*Setter)(const char (&)[64])>
void text64(Rom& rom, const Node& node, Trail&) {
    requireText(node);
    char field[64] = {};
    node.data().copy(field, sizeof(field));
    (rom.*Setter)(field);
}

template <unsigned Index>
void cdmaBaseAddress(Rom& rom, const Node& node, Trail&) {
    rom.setCDMABaseAddress(Index, decimalOrHex(node));
}

void featureBitMap(Rom& rom, const Node& node, Trail&) {
    const unsigned long long bits = decimalOrHex(node);
    if (bits > UINT32_MAX) throw ConversionError("does not fit into 32 bits");
    rom.setFeatureBitMap(static_cast<std::uint32_t>(bits));
}

void uuid(Rom& rom, const Node& node, Trail&) {
    requireText(node);
    rom.setUUID(std::string(node.data()));
}

}  // namespace

void HMAVDsaJsonReaderImpl::parseFeatureRoms_(HPLPlatform& platform, const Node& node,
                                              Trail& trail) {
    static constexpr Field<Rom> FIELDS[] = {
        {"majorVersion", &unsignedFromInt<&Rom::setMajorVersion>},
        {"minorVersion", &unsignedFromInt<&Rom::setMinorVersion>},
        {"corvelBuildID", &unsignedNumber<&Rom::setCorvelBuildID>},
        {"ipBuildID", &unsigned64<&Rom::setIpBuildID>},
        {"timeSinceEpoch", &longNumber<&Rom::setTimeSinceEpoch>},
        {"fpgaPartName", &text64<&Rom::setFPGAPartName>},
        {"vbnvName", &text64<&Rom::setVBNVName>},
        {"ddrChannelCount", &unsignedFromInt<&Rom::setDDRChannelCount>},
        {"ddrChannelSize", &unsignedFromInt<&Rom::setDDRChannelSize>},
        {"drBaseAddress", &longNumber<&Rom::setDrBaseAddress>},
        {"featureBitMap", &featureBitMap},
        {"uuid", &uuid},
        {"cdmaBaseAddress0", &cdmaBaseAddress<0>},
        {"cdmaBaseAddress1", &cdmaBaseAddress<1>},
        {"cdmaBaseAddress2", &cdmaBaseAddress<2>},
        {"cdmaBaseAddress3", &cdmaBaseAddress<3>},
        {"maxTempLimit", &integer<&Rom::setMaxTempLimit>},
        {"maxPowerLimit", &integer<&Rom::setMaxPowerLimit>},
    };
    readItems(node, trail, [&](const Node& item) {
        readFields(FIELDS, item, *platform.addFeatureRom(), trail);
    });
}
