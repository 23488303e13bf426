// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHpfmReader.h"

#include <boost/algorithm/string/trim.hpp>
#include <ostream>
#include <utility>
#include <vector>

#include "formats/hpfm/MAVHpfmLMX.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_platform/HPLPlatform.h"

namespace lmx = mav_platform::lmx;

HMAVHpfmReader::HMAVHpfmReader(std::string text, HPLPlatform* platform)
    : text_(std::move(text)), platform_(platform) {
    if (!text_.empty()) return;
    mav_host::console() << "CRITICAL WARNING: Empty hpfm string passed in\n" << std::flush;
}

HMAVHpfmReader::~HMAVHpfmReader() = default;

bool HMAVHpfmReader::parseFile() {
    if (!HUTFile::exists(path_)) {
        errorMsg_ = "Specified hardware platform file doens't exists\n";
        mav_host::console() << errorMsg_ << std::flush;
        return false;
    }
    source_ = Source::PATH;
    document_.reset();
    try {
        document_ = std::make_unique<lmx::HpfmRepository>(lmx::hpfmFormat().parseFile(path_));
    } catch (const mav_host::xml::BindingError& error) {
        fail_("Error parsing hardware platform file: " + path_ + ": " + error.what() +
              ". Line number:" + std::to_string(error.line()));
        mav_host::report(mav_host::messages::HPFM_FILE_NOT_VALID);
        return false;
    }
    parseRepository_();
    return true;
}

bool HMAVHpfmReader::parseStream() {
    if (source_ != Source::TEXT) bindText_();
    if (!document_) return false;
    parseRepository_();
    return true;
}

bool HMAVHpfmReader::parseBusInterfaces() {
    if (!isBound_()) return false;
    walk_([this](const lmx::HpfmComponent& component) {
        for (const lmx::HpfmBusInterface& bus : component.busInterfaces) parseBusInterface_(bus);
    });
    return true;
}

bool HMAVHpfmReader::parseNocConnectivity() {
    if (!isBound_()) return false;
    for (const lmx::HpfmComponent& component : document_->components) {
        for (const lmx::HpfmNocConnectivity& noc : component.nocConnectivity) {
            parseNocConnectivity_(noc);
        }
    }
    return true;
}

/// True when what was parsed last has bound; the text is parsed when nothing was.
bool HMAVHpfmReader::isBound_() {
    if (source_ == Source::NONE) bindText_();
    return document_ != nullptr;
}

void HMAVHpfmReader::bindText_() {
    source_ = Source::TEXT;
    document_.reset();
    if (text_.empty()) {
        document_ = std::make_unique<lmx::HpfmRepository>();
        return;
    }
    try {
        document_ = std::make_unique<lmx::HpfmRepository>(lmx::hpfmFormat().parseText(text_));
    } catch (const mav_host::xml::BindingError& error) {
        const std::string archive = platform_ != nullptr ? platform_->getPlatformFile() : "";
        fail_("Error parsing hardware platform stream from DSA line " +
              std::to_string(error.line()) + ": " + error.what() +
              (archive.empty() ? "" : ", in " + archive));
        mav_host::report(mav_host::messages::HPFM_MEMBER_NOT_VALID);
    }
}

void HMAVHpfmReader::fail_(std::string text) {
    errorMsg_ = std::move(text);
    mav_host::console() << errorMsg_ << "\n" << std::flush;
}

/// Hands on each component, and reads the bus interfaces beside the components where they stand.
template <class Take>
void HMAVHpfmReader::walk_(Take takeComponent) {
    const std::vector<lmx::HpfmBusInterface>& loose = document_->busInterfaces;
    std::size_t next = 0;
    for (const lmx::HpfmComponent& component : document_->components) {
        for (; next < loose.size() && loose[next].order < component.order; ++next) {
            parseBusInterface_(loose[next]);
        }
        takeComponent(component);
    }
    for (; next < loose.size(); ++next) parseBusInterface_(loose[next]);
}

void HMAVHpfmReader::parseRepository_() {
    walk_([this](const lmx::HpfmComponent& component) {
        const lmx::HpfmPlatformInfo& info = component.platformInfo;
        if (info.deviceInfo) parseDeviceInfo_(*info.deviceInfo);
        parseSystemClocks_(info.systemClocks);
        for (const lmx::HpfmBusInterface& bus : component.busInterfaces) parseBusInterface_(bus);
        for (const lmx::HpfmParameter& parameter : component.parameters) parseParameter_(parameter);
        for (const lmx::HpfmNocConnectivity& noc : component.nocConnectivity) {
            parseNocConnectivity_(noc);
        }
    });
}

/// The description is that of the first device, which is added when the platform has none.
void HMAVHpfmReader::parseDeviceInfo_(const lmx::HpfmDeviceInfo& element) {
    HSTVector<HMAVDevice*> devices;
    platform_->getDevices(devices);
    HPLDevice* device =
        devices.empty() ? platform_->addDevice() : dynamic_cast<HPLDevice*>(devices.front());
    if (device == nullptr) return;
    if (device->getName().empty()) device->setName(element.device);
    if (device->getFpgaPart().empty()) device->setFpgaPart(element.name);
    HPLDevice::Part& part = device->getPart();
    part.setName(element.name);
    part.setArchitecture(element.architecture);
    part.setDevice(element.device);
    part.setPackage(element.package);
    part.setSpeedGrade(element.speedGrade);
}

void HMAVHpfmReader::parseSystemClocks_(const lmx::HpfmSystemClocks& element) {
    if (element.clocks.empty()) return;
    if (element.defaultClock) platform_->setDefaultClockId(*element.defaultClock);
    for (const lmx::HpfmClock& source : element.clocks) {
        HMAVSystemClock& clock = *platform_->addSystemClock();
        clock.setName(source.name);
        clock.setOrigName(source.name);
        clock.setCompRef(source.componentRef);
        clock.setInstRef(source.instanceRef);
        clock.setStatus(source.status);
        clock.setFrequency(source.frequency);
        clock.setPeriod(source.period);
        if (!source.id) continue;
        clock.setId(*source.id);
        clock.setDisplayName("PL " + std::to_string(*source.id));
    }
}

void HMAVHpfmReader::parseBusInterface_(const lmx::HpfmBusInterface& element) {
    HMAVHardwareBusInterface& bus = *platform_->addBusInterface();
    bus.setName(element.name);
    bus.setMode(element.mode);
    bus.setBusTypeRef(element.busTypeRef);
    bus.setBusInterfaceRef(element.busInterfaceRef);
    bus.setCompRef(element.componentRef);
    bus.setInstRef(element.instanceRef);
    bus.setClockRef(element.clockRef);
    bus.setResetRef(element.resetRef);
    bus.setMemPort(element.memPort);
    bus.setSPTag(element.spTag);
    bus.setSLR(element.slr);
    bus.setMemoryInstance(element.memoryInstance);
    bus.setDataWidth(element.dataWidth);
    bus.setNumIdBits(element.idBits);
    bus.setDirection(element.direction);
    bus.setIsrId(element.isrId);
    bus.setCategory(element.category);
    for (const lmx::HpfmAddressSegment& source : element.addressSegments) {
        HMAVHardwareAddressSegment& segment = *bus.addAddressSegment();
        segment.setName(source.name);
        segment.setBaseName(source.baseName);
        segment.setIndex(source.index);
        segment.setInstRef(source.instanceRef);
        segment.setMemoryInstance(source.memoryInstance);
        segment.setSLR(source.slr);
        segment.setSPTag(source.spTag);
        segment.setAuto(source.automatic);
        segment.setMaxMasters(source.maxMasters);
        segment.setRegion(source.region);
        segment.setReadBwUsed(source.readBwUsed);
        segment.setWriteBwUsed(source.writeBwUsed);
        segment.setInterleave(source.interleave);
    }
    if (element.name != lmx::HBM_SUBSYSTEM) return;
    setHBMPresent_();
    updateHBMBankInfo_(element, bus);
}

void HMAVHpfmReader::updateHBMBankInfo_(const lmx::HpfmBusInterface& element,
                                        const HMAVHardwareBusInterface& bus) {
    const std::string instance = element.instanceRef;
    for (const lmx::HpfmAddressSegment& bank : element.addressSegments) {
        platform_->updateHBMBankInfo(instance, bank.name, bank.automatic, &bus);
    }
}

void HMAVHpfmReader::parseParameter_(const lmx::HpfmParameter& element) {
    HMAVHardwareIPParam& parameter = *platform_->addHardwareIPParam();
    parameter.setName(element.name);
    parameter.setValue(element.value);
    parameter.setValid(element.isValid);
    parameter.setCompRef(element.componentRef);
    parameter.setInstRef(element.instanceRef);
}

void HMAVHpfmReader::parseNocConnectivity_(const lmx::HpfmNocConnectivity& element) {
    HMAVHardwareNocConnectivity& noc = *platform_->addNocConnectivity();
    noc.setInstRef(element.instanceRef);
    for (const lmx::HpfmConnectedInterface& bus : element.busInterfaces) {
        noc.addBusInterface(bus.name ? *bus.name : boost::trim_copy(bus.text));
    }
}
