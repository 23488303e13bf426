// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHpfmReader.h"

#include <boost/algorithm/string/trim.hpp>
#include <ostream>
#include <utility>
#include <vector>

#include "formats/hpfm/MAVHpfmLMX.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_platform/HPLPlatform.h"

namespace lmx = mav_platform::lmx;

namespace {

std::string conv(const std::string& text) {
    return HI18N::convert(text);
}

}  // namespace

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
    try {
        document_ = std::make_unique<lmx::HpfmRepository>(lmx::hpfmFormat().parseFile(path_));
    } catch (const mav_host::xml::BindingError& error) {
        errorMsg_ = std::string("Error parsing hardware platform file: ") + error.what() + ". " +
                    "Line number:" + std::to_string(error.line());
        mav_host::console() << errorMsg_ << "\n" << std::flush;
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-12@%s", {path_});
        return false;
    }
    parseRepository_();
    return true;
}

bool HMAVHpfmReader::parseStream() {
    if (!bindText_()) return false;
    parseRepository_();
    return true;
}

bool HMAVHpfmReader::parseBusInterfaces() {
    if (!bindText_()) return false;
    walk_([this](const lmx::HpfmComponent& component) {
        for (const lmx::HpfmBusInterface& bus : component.busInterfaces) parseBusInterface_(bus);
    });
    return true;
}

bool HMAVHpfmReader::parseNocConnectivity() {
    if (!bindText_()) return false;
    for (const lmx::HpfmComponent& component : document_->components) {
        for (const lmx::HpfmNocConnectivity& noc : component.nocConnectivity) {
            parseNocConnectivity_(noc);
        }
    }
    return true;
}

/// Binds the text unless a document is there; one that has failed fails again without a new report.
bool HMAVHpfmReader::bindText_() {
    if (document_) return true;
    if (!errorMsg_.empty()) return false;
    if (text_.empty()) {
        document_ = std::make_unique<lmx::HpfmRepository>();
        return true;
    }
    try {
        document_ = std::make_unique<lmx::HpfmRepository>(lmx::hpfmFormat().parseText(text_));
        return true;
    } catch (const mav_host::xml::BindingError& error) {
        const std::string place = "line " + std::to_string(error.line()) + ": " + error.what();
        errorMsg_ = "Error parsing hardware platform stream from DSA " + place;
        mav_host::console() << errorMsg_ << "\n" << std::flush;
        const std::string archive = platform_ != nullptr ? platform_->getPlatformFile() : "";
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-31@%s",
                           {archive.empty() ? place : archive + ": " + place});
        return false;
    }
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
    if (device->getName().empty()) device->setName(conv(element.device));
    if (device->getFpgaPart().empty()) device->setFpgaPart(conv(element.name));
    HPLDevice::Part& part = device->getPart();
    part.setName(conv(element.name));
    part.setArchitecture(conv(element.architecture));
    part.setDevice(conv(element.device));
    part.setPackage(conv(element.package));
    part.setSpeedGrade(conv(element.speedGrade));
}

void HMAVHpfmReader::parseSystemClocks_(const lmx::HpfmSystemClocks& element) {
    if (element.clocks.empty()) return;
    if (element.defaultClock) platform_->setDefaultClockId(*element.defaultClock);
    for (const lmx::HpfmClock& source : element.clocks) {
        HMAVSystemClock& clock = *platform_->addSystemClock();
        clock.setName(conv(source.name));
        clock.setOrigName(conv(source.name));
        clock.setCompRef(conv(source.componentRef));
        clock.setInstRef(conv(source.instanceRef));
        clock.setStatus(conv(source.status));
        clock.setFrequency(conv(source.frequency));
        clock.setPeriod(conv(source.period));
        if (!source.id) continue;
        clock.setId(*source.id);
        clock.setDisplayName("PL " + std::to_string(*source.id));
    }
}

void HMAVHpfmReader::parseBusInterface_(const lmx::HpfmBusInterface& element) {
    HMAVHardwareBusInterface& bus = *platform_->addBusInterface();
    bus.setName(conv(element.name));
    bus.setMode(conv(element.mode));
    bus.setBusTypeRef(conv(element.busTypeRef));
    bus.setBusInterfaceRef(conv(element.busInterfaceRef));
    bus.setCompRef(conv(element.componentRef));
    bus.setInstRef(conv(element.instanceRef));
    bus.setClockRef(conv(element.clockRef));
    bus.setResetRef(conv(element.resetRef));
    bus.setMemPort(conv(element.memPort));
    bus.setSPTag(conv(element.spTag));
    bus.setSLR(conv(element.slr));
    bus.setMemoryInstance(conv(element.memoryInstance));
    bus.setDataWidth(element.dataWidth);
    bus.setNumIdBits(element.idBits);
    bus.setDirection(conv(element.direction));
    bus.setIsrId(conv(element.isrId));
    bus.setCategory(conv(element.category));
    for (const lmx::HpfmAddressSegment& source : element.addressSegments) {
        HMAVHardwareAddressSegment& segment = *bus.addAddressSegment();
        segment.setName(conv(source.name));
        segment.setBaseName(conv(source.baseName));
        segment.setIndex(source.index);
        segment.setInstRef(conv(source.instanceRef));
        segment.setMemoryInstance(conv(source.memoryInstance));
        segment.setSLR(conv(source.slr));
        segment.setSPTag(conv(source.spTag));
        segment.setAuto(conv(source.automatic));
        segment.setMaxMasters(source.maxMasters);
        segment.setRegion(conv(source.region));
        segment.setReadBwUsed(source.readBwUsed);
        segment.setWriteBwUsed(source.writeBwUsed);
        segment.setInterleave(source.interleave);
    }
    if (element.name != lmx::HBM_SUBSYSTEM) return;
    setHBMPresent_();
    updateHBMBankInfo_(element);
}

void HMAVHpfmReader::updateHBMBankInfo_(const lmx::HpfmBusInterface& element) {
    const std::string instance = conv(element.instanceRef);
    for (const lmx::HpfmAddressSegment& bank : element.addressSegments) {
        platform_->updateHBMBankInfo(instance, conv(bank.name), bank.automatic);
    }
}

void HMAVHpfmReader::parseParameter_(const lmx::HpfmParameter& element) {
    HMAVHardwareIPParam& parameter = *platform_->addHardwareIPParam();
    parameter.setName(conv(element.name));
    parameter.setValue(conv(element.value));
    parameter.setValid(conv(element.isValid));
    parameter.setCompRef(conv(element.componentRef));
    parameter.setInstRef(conv(element.instanceRef));
}

void HMAVHpfmReader::parseNocConnectivity_(const lmx::HpfmNocConnectivity& element) {
    HMAVHardwareNocConnectivity& noc = *platform_->addNocConnectivity();
    noc.setInstRef(conv(element.instanceRef));
    for (const lmx::HpfmConnectedInterface& bus : element.busInterfaces) {
        noc.addBusInterface(conv(bus.name ? *bus.name : boost::trim_copy(bus.text)));
    }
}
