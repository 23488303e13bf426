// SPDX-License-Identifier: Apache-2.0
#include "formats/Fields.h"
#include "formats/metadata/HMAVDsaJsonReaderImpl.h"
#include "mav_platform/HPLBoard.h"
#include "mav_platform/HPLCore.h"
#include "mav_platform/HPLDevice.h"
#include "mav_platform/HPLDriver.h"
#include "mav_platform/HPLFile.h"
#include "mav_platform/HPLInterface.h"
#include "mav_platform/HPLMemory.h"
#include "mav_platform/HPLPCIeId.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HPLPort.h"

using namespace mav_platform::metadata;

namespace {

using mav_platform::json::Node;

/// A list of "name"/"value" pairs, each handed to `Add(name, value)`.
template <auto Add, class T>
void pairs(T& target, const Node& node, Trail& trail) {
    struct Pair {
        std::string name, value;
    };
    static constexpr Field<Pair> FIELDS[] = {
        {"name",
         +[](Pair& pair, const Node& n, Trail&) {
             requireText(n);
             pair.name = n.data();
         }},
        {"value",
         +[](Pair& pair, const Node& n, Trail&) {
             requireText(n);
             pair.value = n.data();
         }},
    };
    readItems(node, trail, [&](const Node& item) {
        Pair pair;
        readFields(FIELDS, item, pair, trail);
        (target.*Add)(std::move(pair.name), std::move(pair.value));
    });
}

void readConnector(HPLBoard& board, const Node& node, Trail& trail) {
    using Connector = HPLBoard::DimmConnector;
    static constexpr Field<Connector> FIELDS[] = {
        {"name", &text<&Connector::setName>},
        {"displayName", &text<&Connector::setDisplayName>},
        {"type", &text<&Connector::setType>},
        {"connectedName", &text<&Connector::setConnectedName>},
        {"connectedDisplayName", &text<&Connector::setConnectedDisplayName>},
        {"connected", &boolean<&Connector::setConnected>},
        {"locked", &boolean<&Connector::setLocked>},
    };
    readFields(FIELDS, node, *board.addDimmConnector(), trail);
}

void readDriver(HPLBoard& board, const Node& node, Trail& trail) {
    static constexpr Field<HPLDriver> FIELDS[] = {
        {"name", &text<&HPLDriver::setName>},
        {"type", &text<&HPLDriver::setType>},
    };
    readFields(FIELDS, node, *board.addDriver(), trail);
}

void readPCIe(HPLBoard& board, const Node& node, Trail& trail) {
    using Id = HPLPCIeId;
    static constexpr Field<Id> FIELDS[] = {
        {"vendor", &text<&Id::setVendor>},
        {"device", &text<&Id::setDevice>},
        {"subsystem", &text<&Id::setSubsystem>},
        {"featureId", &text<&Id::setFeatureId>},
    };
    readFields(FIELDS, node, board.createPCIeId(), trail);
}

void readPart(HPLDevice& device, const Node& node, Trail& trail) {
    using Part = HPLDevice::Part;
    static constexpr Field<Part> FIELDS[] = {
        {"name", &text<&Part::setName>},
        {"architecture", &text<&Part::setArchitecture>},
        {"device", &text<&Part::setDevice>},
        {"package", &text<&Part::setPackage>},
        {"speedGrade", &text<&Part::setSpeedGrade>},
        {"tempGrade", &text<&Part::setTempGrade>},
        {"staPower", &text<&Part::setStaPower>},
        {"revision", &text<&Part::setRevision>},
    };
    readFields(FIELDS, node, device.getPart(), trail);
}

void readDeviceClock(HPLDevice& device, const Node& node, Trail& trail) {
    using Clock = HPLDevice::Clock;
    static constexpr Field<Clock> FIELDS[] = {
        {"name", &text<&Clock::setName>},
        {"frequency", &text<&Clock::setFrequency>},
    };
    readFields(FIELDS, node, *device.addClock(), trail);
}

void readPBlock(HPLCore& core, const Node& node, Trail& trail) {
    using PBlock = HPLCore::PBlock;
    static constexpr Field<PBlock> FIELDS[] = {
        {"name", &text<&PBlock::setName>},
        {"resources", &pairs<&PBlock::addResource>},
    };
    readFields(FIELDS, node, *core.addPBlock(), trail);
}

void readPort(HPLCore& core, const Node& node, Trail& trail) {
    using Port = HPLPort;
    static constexpr Field<Port> FIELDS[] = {
        {"name", &text<&Port::setName>},
        {"type", &text<&Port::setType>},
        {"mode", &text<&Port::setMode>},
        {"base", &text<&Port::setBase>},
        {"range", &text<&Port::setRange>},
        {"dataWidth", &text<&Port::setDataWidth>},
        {"protocol", &text<&Port::setProtocol>},
        {"idWidth", &text<&Port::setIdWidth>},
        {"addrWidth", &text<&Port::setAddrWidth>},
        {"userWidth", &text<&Port::setUserWidth>},
        {"addrOffset", &text<&Port::setAddrOffset>},
        {"addrRange", &text<&Port::setAddrRange>},
        {"maxBurstLength", &text<&Port::setMaxBurstLength>},
        {"frequency", &text<&Port::setFrequency>},
        {"polarity", &text<&Port::setPolarity>},
        {"direction", &text<&Port::setDirection>},
    };
    readFields(FIELDS, node, *core.addPort(), trail);
}

}  // namespace

void HMAVDsaJsonReaderImpl::parseBoard_(HPLPlatform& platform, const Node& node, Trail& trail) {
    using Board = HPLBoard;
    static constexpr Field<Board> FIELDS[] = {
        {"name", &text<&Board::setName>},
        {"vendor", &text<&Board::setVendor>},
        {"part", &text<&Board::setPart>},
        {"boardPart", &text<&Board::setBoardPart>},
        {"imageFileHdpi", &text<&Board::setImageFileHdpi>},
        {"imageFileMdpi", &text<&Board::setImageFileMdpi>},
        {"imageFileLdpi", &text<&Board::setImageFileLdpi>},
        {"connectors", &items<&readConnector>},
        {"drivers", &items<&readDriver>},
        {"pcie", &object<&readPCIe>},
    };
    readFields(FIELDS, node, platform.createBoard(), trail);
}

void HMAVDsaJsonReaderImpl::parseDevices_(HPLPlatform& platform, const Node& node, Trail& trail) {
    using Device = HPLDevice;
    static constexpr Field<Device> FIELDS[] = {
        {"name", &text<&Device::setName>},
        {"type", &text<&Device::setType>},
        {"fpgaPart", &text<&Device::setFpgaPart>},
        {"part", &object<&readPart>},
        {"numSLRs", &unsignedNumber<&Device::setNumSLRs>},
        {"scalableSystemClocks", &items<&readDeviceClock>},
        {"core", &object<&parseCore_>},
    };
    readItems(node, trail,
              [&](const Node& item) { readFields(FIELDS, item, *platform.addDevice(), trail); });
}

void HMAVDsaJsonReaderImpl::parseCore_(HPLDevice& device, const Node& node, Trail& trail) {
    using Core = HPLCore;
    static constexpr Field<Core> FIELDS[] = {
        {"name", &text<&Core::setName>},
        {"type", &text<&Core::setType>},
        {"instPath", &text<&Core::setInstPath>},
        {"sourceViewInstPath", &text<&Core::setSourceViewInstPath>},
        {"parentRMInstPath", &text<&Core::setParentRMInstPath>},
        {"reconfigModuleName", &text<&Core::setReconfigModuleName>},
        {"drBDName", &text<&Core::setDrBDName>},
        {"vlnv", &text<&Core::setVlnv>},
        {"clockFreq", &text<&Core::setClockFreq>},
        {"numComputeUnits", &unsignedNumber<&Core::setNumComputeUnits>},
        {"bramCount", &text<&Core::setBramCount>},
        {"dspCount", &text<&Core::setDspCount>},
        {"lutCount", &text<&Core::setLutCount>},
        {"uramCount", &text<&Core::setUramCount>},
        {"registerCount", &text<&Core::setRegisterCount>},
        {"pBlocks", &items<&readPBlock>},
        {"validSlrs", &texts<&Core::addValidSlr>},
        {"resources", &pairs<&Core::addAvailableResource>},
        {"configParams", &pairs<&Core::addConfigParam>},
        {"ports", &items<&readPort>},
    };
    readFields(FIELDS, node, device.createCore(), trail);
}

void HMAVDsaJsonReaderImpl::parseInterfaces_(HPLPlatform& platform, const Node& node,
                                             Trail& trail) {
    static constexpr Field<HPLInterface> FIELDS[] = {
        {"id", &text<&HPLInterface::setId>},
        {"name", &text<&HPLInterface::setName>},
        {"type", &text<&HPLInterface::setType>},
    };
    readItems(node, trail,
              [&](const Node& item) { readFields(FIELDS, item, *platform.addInterface(), trail); });
}

void HMAVDsaJsonReaderImpl::parseMemories_(HPLPlatform& platform, const Node& node, Trail& trail) {
    using Memory = HPLMemory;
    static constexpr Field<Memory> FIELDS[] = {
        {"name", &text<&Memory::setName>},
        {"type", &text<&Memory::setType>},
        {"size", &text<&Memory::setSize>},
        {"lowAddress", &address<&Memory::setLowAddress>},
        {"highAddress", &address<&Memory::setHighAddress>},
        {"configParams", &pairs<&Memory::addConfigParam>},
    };
    readItems(node, trail,
              [&](const Node& item) { readFields(FIELDS, item, *platform.addMemory(), trail); });
}

void HMAVDsaJsonReaderImpl::parseFiles_(HPLPlatform& platform, const Node& node, Trail& trail) {
    static constexpr bool REQUIRED = true;
    static constexpr Field<HPLFile> FIELDS[] = {
        {"name", &text<&HPLFile::setName>, REQUIRED},
        {"type", &text<&HPLFile::setType>, REQUIRED},
        {"usedIn", &text<&HPLFile::setUsedIn>},
        {"processingOrder", &text<&HPLFile::setProcessingOrder>},
    };
    readItems(node, trail, [&](const Node& item) {
        HPLFile file;
        readFields(FIELDS, item, file, trail);
        platform.validateFileType(file.getType());
        HPLFile* added = platform.addFile(file.getType(), file.getName());
        added->setUsedIn(file.getUsedIn());
        added->setProcessingOrder(file.getProcessingOrder());
    });
}
