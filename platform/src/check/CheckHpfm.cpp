// SPDX-License-Identifier: Apache-2.0
#include "check/CheckHpfm.h"

#include <map>

#include "check/CheckMetadata.h"
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
            clocks(component.platformInfo.systemClocks);
            for (const auto& bus : component.busInterfaces) interface(bus);
        }
        for (const auto& bus : document.busInterfaces) interface(bus);
        return std::move(names_);
    }

  private:
    void clocks(const lmx::HpfmSystemClocks& clocks) {
        for (const lmx::HpfmClock& clock : clocks.clocks) {
            names_.clocks.insert(clock.name);
            names_.clockIds.insert(std::to_string(clock.id.value_or(0)));
        }
        if (clocks.defaultClock) {
            names_.defaultClocks.push_back({*clocks.defaultClock, clocks.line, clocks.column});
        }
    }

    void interface(const lmx::HpfmBusInterface& bus) {
        const auto [first, isNew] = seen_.emplace(bus.name, bus.line);
        if (!isNew && !bus.name.empty()) {
            report_.add("duplicate", {file_, bus.line, bus.column},
                        "the bus interface " + shown(bus.name) + " stands on line " +
                            std::to_string(first->second) + " already");
        }
        if (bus.busTypeRef == "reset") names_.resets.insert(bus.name);
        if (!bus.clockRef.empty() || !bus.resetRef.empty()) {
            names_.references.push_back(
                {bus.name, bus.clockRef, bus.resetRef, bus.line, bus.column});
        }
        SegmentNames segments(bus.name);
        std::vector<std::string> banks;
        for (const lmx::HpfmAddressSegment& segment : bus.addressSegments) {
            // An index with a fault reads as 0.
            if (whole_)
                segments.add(segment.name, std::to_string(segment.index),
                             {file_, segment.line, segment.column}, report_);
            banks.push_back(segment.automatic);
        }
        if (bus.name == lmx::HBM_SUBSYSTEM)
            checkBanks({file_, bus.line, bus.column}, banks, report_);
    }

    const std::string& file_;
    const bool whole_;
    Report& report_;
    HpfmNames names_;
    std::map<std::string, std::size_t> seen_;
};

}  // namespace

std::optional<HpfmNames> checkHpfm(std::string_view text, const std::string& file, Report& report) {
    bool whole = true;
    const auto document = bindDocument(lmx::hpfmFormat(), text, file, report, &whole);
    if (!document) return std::nullopt;
    HpfmNames names = HpfmCheck(file, whole, report).run(*document);
    if (!whole) {
        names.references.clear();
        names.defaultClocks.clear();
    }
    return names;
}

}  // namespace mav_platform::check
