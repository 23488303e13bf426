// SPDX-License-Identifier: Apache-2.0
#include "check/CheckHpfm.h"

#include <algorithm>
#include <map>

#include "check/CheckMetadata.h"
#include "check/CheckValues.h"
#include "check/CheckXml.h"
#include "formats/hpfm/MAVHpfmLMX.h"

namespace mav_platform::check {
namespace {

class HpfmCheck {
  public:
    HpfmCheck(const std::string& file, bool whole, Report& report)
        : file_(file), whole_(whole), report_(report) {}

    HpfmNames run(const lmx::HpfmRepository& document) {
        for (const auto& component : document.components) {
            if (const auto& device = component.platformInfo.deviceInfo) {
                names_.part = device->name;
                names_.partPlace = {file_, device->line, device->column};
            }
            clocks(component.platformInfo.systemClocks);
            for (const auto& record : component.nocConnectivity) connectivity(record);
            for (const auto& bus : component.busInterfaces) interface(bus);
        }
        for (const auto& bus : document.busInterfaces) interface(bus);
        return std::move(names_);
    }

  private:
    void clocks(const lmx::HpfmSystemClocks& clocks) {
        for (const lmx::HpfmClock& clock : clocks.clocks) {
            const Place place{file_, clock.line, clock.column};
            const std::string id = clock.id ? std::to_string(*clock.id) : std::string();
            checkClock(clock.frequency, clock.period, place, place, report_);
            checkWord(clock.status, "the clock status", place, CLOCK_STATES, true, report_);
            once(clockNames_, "clock", clock.name, place);
            if (whole_) once(clockIds_, "clock with the id", id, place);
            names_.clocks.insert(clock.name);
            names_.clockIds.insert(id.empty() ? "0" : id);
        }
        if (clocks.defaultClock) {
            names_.defaultClocks.push_back({*clocks.defaultClock, clocks.line, clocks.column});
        }
    }

    void interface(const lmx::HpfmBusInterface& bus) {
        const Place place{file_, bus.line, bus.column};
        once(names_.buses, "bus interface", bus.name, place);
        checkWord(bus.mode, "the mode", place, BUS_MODES, bus.busTypeRef == "aximm", report_);
        checkWord(bus.category, "the category", place, BUS_CATEGORIES, false, report_);
        names_.instances.insert(bus.instanceRef);
        region(bus.slr, place);
        if (bus.busTypeRef == "reset") names_.resets.insert(bus.name);
        if (!bus.clockRef.empty() || !bus.resetRef.empty()) {
            names_.references.push_back(
                {bus.name, bus.clockRef, bus.resetRef, bus.line, bus.column});
        }
        SegmentNames segments(bus.name);
        std::vector<std::string> banks;
        for (const lmx::HpfmAddressSegment& segment : bus.addressSegments) {
            region(segment.slr, {file_, segment.line, segment.column});
            // An index with a fault reads as 0.
            if (whole_)
                segments.add(segment.name, std::to_string(segment.index),
                             {file_, segment.line, segment.column}, report_);
            banks.push_back(segment.automatic);
        }
        if (bus.name == lmx::HBM_SUBSYSTEM)
            checkBanks({file_, bus.line, bus.column}, banks, report_);
    }

    void region(const std::string& name, const Place& place) {
        if (!name.empty()) names_.regions.push_back({name, place});
    }

    void connectivity(const lmx::HpfmNocConnectivity& record) {
        for (const lmx::HpfmConnectedInterface& bus : record.busInterfaces) {
            std::string name = bus.name.value_or(bus.text);
            name.erase(0, std::min(name.find_first_not_of(" \t\r\n"), name.size()));
            name.erase(name.find_last_not_of(" \t\r\n") + 1);
            if (!name.empty()) names_.connected.push_back({name, {file_, bus.line, bus.column}});
        }
    }

    using Lines = std::map<std::string, std::size_t>;

    void once(Lines& seen, const std::string& kind, const std::string& name, const Place& place) {
        if (name.empty()) return;
        const auto [first, isNew] = seen.emplace(name, place.line);
        if (isNew) return;
        report_.add("duplicate", place,
                    "the " + kind + " " + shown(name) + " stands on line " +
                        std::to_string(first->second) + " already");
    }

    const std::string& file_;
    const bool whole_;
    Report& report_;
    HpfmNames names_;
    Lines clockNames_, clockIds_;
};

}  // namespace

std::optional<HpfmNames> checkHpfm(std::string_view text, const std::string& file, Report& report) {
    bool whole = true;
    const auto document = bindDocument(lmx::hpfmFormat(), text, file, report, &whole);
    if (!document) return std::nullopt;
    HpfmNames names = HpfmCheck(file, whole, report).run(*document);
    if (!whole) {
        names.references.clear();
        names.connected.clear();
        names.defaultClocks.clear();
    }
    return names;
}

}  // namespace mav_platform::check
