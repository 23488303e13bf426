// SPDX-License-Identifier: Apache-2.0
#include "formats/hpfm/MAVHpfmLMX.h"

#include <initializer_list>

namespace mav_platform::lmx {
namespace {

using mav_host::xml::Format;
using mav_host::xml::Items;

/// Attributes of the format that the model does not hold.
template <class T>
void accept(Items<T>& items, std::initializer_list<const char*> names) {
    for (const char* name : names) items.attribute(name, &T::accepted);
}

Items<HpfmPlatformInfo> platformInfo() {
    using Device = HpfmDeviceInfo;
    Items<Device> device;
    device.line(&Device::line)
        .column(&Device::column)
        .attribute("qd:name", &Device::name)
        .attribute("qd:architecture", &Device::architecture)
        .attribute("qd:device", &Device::device)
        .attribute("qd:package", &Device::package)
        .attribute("qd:speedGrade", &Device::speedGrade);

    using Clock = HpfmClock;
    Items<Clock> clock;
    clock.line(&Clock::line)
        .column(&Clock::column)
        .attribute("qd:name", &Clock::name)
        .attribute("qd:id", &Clock::id)
        .attribute("qd:frequency", &Clock::frequency)
        .attribute("qd:period", &Clock::period)
        .attribute("qd:status", &Clock::status)
        .attribute("qd:componentRef", &Clock::componentRef)
        .attribute("qd:instanceRef", &Clock::instanceRef);
    accept(clock, {"qd:normalizedPeriod", "qd:clkDomain"});

    using Clocks = HpfmSystemClocks;
    Items<Clocks> clocks;
    clocks.line(&Clocks::line)
        .column(&Clocks::column)
        .attribute("qd:defaultClock", &Clocks::defaultClock)
        .element("qd:clock", &Clocks::clocks, clock);

    using Registered = HpfmRegisteredDevices;
    Items<Registered> registered;
    registered.either("qd:uio", &Registered::accepted).either("qd:kio", &Registered::accepted);

    using Info = HpfmPlatformInfo;
    Items<Info> items;
    items.either("qd:description", &Info::description)
        .element("qd:deviceInfo", &Info::deviceInfo, device)
        .element("qd:systemClocks", &Info::systemClocks, clocks)
        .element("qd:registeredDevices", &Info::registeredDevices, registered);
    return items;
}

Items<HpfmAddressSegment> addressSegment() {
    using Segment = HpfmAddressSegment;
    Items<Segment> items;
    items.line(&Segment::line)
        .column(&Segment::column)
        .attribute("qd:name", &Segment::name)
        .attribute("qd:baseName", &Segment::baseName)
        .attribute("qd:index", &Segment::index)
        .attribute("qd:instanceRef", &Segment::instanceRef)
        .attribute("qd:memoryInstance", &Segment::memoryInstance)
        .attribute("qd:slr", &Segment::slr)
        .attribute("qd:sptag", &Segment::spTag)
        .attribute("qd:auto", &Segment::automatic)
        .attribute("qd:maxMasters", &Segment::maxMasters)
        .attribute("qd:region", &Segment::region)
        .attribute("qd:readBwUsed", &Segment::readBwUsed)
        .attribute("qd:writeBwUsed", &Segment::writeBwUsed)
        .attribute("qd:interleave", &Segment::interleave);
    return items;
}

Items<HpfmBusInterface> busInterface() {
    using Bus = HpfmBusInterface;
    Items<Bus> items;
    items.order(&Bus::order)
        .line(&Bus::line)
        .column(&Bus::column)
        .attribute("qd:name", &Bus::name)
        .attribute("qd:mode", &Bus::mode)
        .attribute("qd:busTypeRef", &Bus::busTypeRef)
        .attribute("qd:busInterfaceRef", &Bus::busInterfaceRef)
        .attribute("qd:componentRef", &Bus::componentRef)
        .attribute("qd:instanceRef", &Bus::instanceRef)
        .attribute("qd:clockRef", &Bus::clockRef)
        .attribute("qd:resetRef", &Bus::resetRef)
        .attribute("qd:memport", &Bus::memPort)
        .attribute("qd:sptag", &Bus::spTag)
        .attribute("qd:slr", &Bus::slr)
        .attribute("qd:memoryInstance", &Bus::memoryInstance)
        .attribute("qd:dataWidth", &Bus::dataWidth)
        .attribute("qd:idBits", &Bus::idBits)
        .attribute("qd:direction", &Bus::direction)
        .attribute("qd:isrId", &Bus::isrId)
        .attribute("qd:category", &Bus::category)
        .element("qd:addressSegment", &Bus::addressSegments, addressSegment());
    accept(items, {"qd:irq", "qd:cardinality", "qd:cacheCoherent", "qd:hasTlast", "qd:maxMasters",
                   "qd:auto", "qd:size", "qd:clkDomain", "qd:peakMemoryBandwidth"});
    return items;
}

Items<HpfmNocConnectivity> nocConnectivity() {
    using Connected = HpfmConnectedInterface;
    Items<Connected> connected;
    connected.line(&Connected::line)
        .column(&Connected::column)
        .attribute("qd:name", &Connected::name)
        .text(&Connected::text);

    using Noc = HpfmNocConnectivity;
    Items<Noc> items;
    items.attribute("qd:instanceRef", &Noc::instanceRef)
        .element("qd:busInterface", &Noc::busInterfaces, connected);
    return items;
}

Items<HpfmComponent> component(const Items<HpfmBusInterface>& bus) {
    using Parameter = HpfmParameter;
    Items<Parameter> parameter;
    parameter.attribute("qd:name", &Parameter::name)
        .attribute("qd:value", &Parameter::value)
        .attribute("qd:isValid", &Parameter::isValid)
        .attribute("qd:componentRef", &Parameter::componentRef)
        .attribute("qd:instanceRef", &Parameter::instanceRef);

    Items<HpfmResourceEstimates> estimates;
    accept(estimates, {"qd:BRAM", "qd:DSP", "qd:FF", "qd:LUT", "qd:nocDpeNmu", "qd:nocDpeNsu",
                       "qd:nocPlNmu", "qd:nocPlNsu", "qd:nocChannelMaxBw"});

    using Component = HpfmComponent;
    Items<Component> items;
    items.order(&Component::order)
        .element("qd:platformInfo", &Component::platformInfo, platformInfo())
        .element("qd:busInterface", &Component::busInterfaces, bus)
        .element("qd:parameter", &Component::parameters, parameter)
        .element("qd:resourceEstimates", &Component::resourceEstimates, estimates)
        .element("qd:nocConnectivity", &Component::nocConnectivity, nocConnectivity());
    accept(items, {"qd:name", "qd:type", "qd:vendor", "qd:library", "qd:version"});
    return items;
}

Items<HpfmRepository> repository() {
    const Items<HpfmBusInterface> bus = busInterface();
    using Repository = HpfmRepository;
    Items<Repository> items;
    items.element("qd:component", &Repository::components, component(bus))
        .element("qd:busInterface", &Repository::busInterfaces, bus);
    accept(items, {"qd:vendor", "qd:library", "qd:name", "qd:version"});
    return items;
}

}  // namespace

const Format<HpfmRepository>& hpfmFormat() {
    static const Format<HpfmRepository> format("qd:repository", repository());
    return format;
}

}  // namespace mav_platform::lmx
