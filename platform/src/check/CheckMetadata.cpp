// SPDX-License-Identifier: Apache-2.0
#include "check/CheckMetadata.h"

#include <algorithm>
#include <cstdint>
#include <set>

#include "check/CheckArray.h"
#include "check/CheckNames.h"
#include "check/CheckValues.h"
#include "formats/hpfm/MAVHpfmLMX.h"
#include "json/Convert.h"
#include "mav_host/Letters.h"

namespace mav_platform::check {

using json::Node;

std::vector<Node> itemsOf(const Node& node, std::string_view key) {
    std::vector<Node> items;
    if (const auto list = node.find(key)) {
        for (const Node& item : *list) items.push_back(item);
    }
    return items;
}

std::string sameNumber(std::string_view text) {
    std::string_view digits = text.substr(text.starts_with('+') ? 1 : 0);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::string(text);
    }
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size() - 1));
    return std::string(digits);
}

void checkUnique(const LocatedJson& json, const std::vector<Node>& items, const char* key,
                 const std::string& list, Report& report) {
    const bool isNumber = std::string_view(key) == "id" || std::string_view(key) == "designID";
    std::map<std::string, std::size_t> seen;
    for (const Node& item : items) {
        const std::string text = item.text(key);
        if (text.empty()) continue;
        const Place place = json.place(item, key);
        const auto [first, isNew] = seen.emplace(isNumber ? sameNumber(text) : text, place.line);
        if (isNew) continue;
        report.add("duplicate", place,
                   "the " + std::string(key) + " " + shown(text) + " in " + list +
                       " stands on line " + std::to_string(first->second) + " already");
    }
}

void checkBanks(const Place& place, const std::vector<std::string>& banks, Report& report) {
    const auto assignable =
        banks.size() - static_cast<std::size_t>(std::count(banks.begin(), banks.end(), "false"));
    const auto preferred =
        static_cast<std::size_t>(std::count(banks.begin(), banks.end(), "preferred"));
    if (preferred == 0 || preferred == assignable) return;
    report.add("hbm-preferred", place,
               std::to_string(preferred) + " of " + std::to_string(assignable) +
                   " assignable HBM banks are preferred; prefer all of them or none");
}

void SegmentNames::add(const std::string& name, const std::string& index, const Place& place,
                       Report& report) {
    if (name.empty()) return;
    const auto [first, isNew] = lines_.emplace(std::pair(name, sameNumber(index)), place.line);
    if (isNew) return;
    report.add("duplicate", place,
               "the address segment " + shown(name) + " with the index " + shown(index) +
                   " of the bus interface " + shown(bus_) + " stands on line " +
                   std::to_string(first->second) + " already");
}

namespace {

std::string idOf(const Node& clock) {
    const std::string id = clock.text("id");
    return id.empty() ? "0" : sameNumber(id);
}

void checkClocks(const LocatedJson& json, Report& report) {
    const std::vector<Node> clocks = itemsOf(json.root(), "systemClocks");
    if (clocks.empty()) return;
    std::string id = "0";
    const Node* marked = nullptr;
    for (const Node& clock : clocks) {
        if (!json::toBool(clock.text("default"))) continue;
        id = idOf(clock);
        if (marked != nullptr) {
            report.add("default-clock", json.place(clock, "default"),
                       "the clock " + shown(clock.text("name")) +
                           " is marked as default, and so is the one before it, " +
                           shown(marked->text("name")) + ", on line " +
                           std::to_string(json.place(*marked, "default").line));
        }
        marked = &clock;
    }
    const bool known = std::any_of(clocks.begin(), clocks.end(),
                                   [&](const Node& clock) { return idOf(clock) == id; });
    if (known) return;
    report.add("default-clock", json.place(*json.root().find("systemClocks")),
               "no clock is marked as default, and none has the id 0");
}

void checkMemories(const LocatedJson& json, Report& report) {
    struct Range {
        std::uint64_t low, high;
        std::string name, type;
        Place place;
    };
    std::vector<Range> ranges;
    for (const Node& memory : itemsOf(json.root(), "memories")) {
        const auto low = json::toDecimalOrHex(memory.text("lowAddress"));
        const auto high = json::toDecimalOrHex(memory.text("highAddress"));
        if (!low || !high) continue;
        const std::string name = memory.text("name");
        if (*high < *low) {
            report.add("memory-overlap", json.place(memory, "highAddress"),
                       "the addresses of " + shown(name) + " end before they begin");
            continue;
        }
        // One without an address of its own has no range that could overlap.
        if (*low == *high) continue;
        ranges.push_back({*low, *high, name, mav_host::lowerCase(memory.text("type")),
                          json.place(memory, "lowAddress")});
    }
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](const Range& a, const Range& b) { return a.low < b.low; });
    std::map<std::string_view, const Range*> furthest;  // of those before, by type
    for (const Range& range : ranges) {
        const Range*& widest = furthest[range.type];
        if (widest != nullptr && range.low <= widest->high) {
            report.add("memory-overlap", range.place,
                       "the addresses of " + shown(range.name) + " overlap those of " +
                           shown(widest->name) + " on line " + std::to_string(widest->place.line));
        }
        if (widest == nullptr || range.high > widest->high) widest = &range;
    }
}

std::set<std::string> clocksOf(const LocatedJson& json) {
    std::set<std::string> clocks;
    for (const Node& clock : itemsOf(json.root(), "systemClocks")) {
        clocks.insert(clock.text("name"));
        clocks.insert(clock.text("origName"));
    }
    return clocks;
}

std::set<std::string> resetsOf(const LocatedJson& json,
                               const std::vector<const HpfmNames*>& documents) {
    std::set<std::string> resets;
    for (const Node& bus : itemsOf(json.root(), "busInterfaces")) {
        if (bus.text("typeRef") == "reset") resets.insert(bus.text("name"));
    }
    for (const HpfmNames* document : documents) {
        resets.insert(document->resets.begin(), document->resets.end());
    }
    return resets;
}

void checkReference(const char* rule, const char* kind, const Place& place, const std::string& bus,
                    const std::string& name, const std::set<std::string>& known, Report& report) {
    if (name.empty() || known.count(name) > 0) return;
    report.add(rule, place,
               "the bus interface " + shown(bus) + " refers to the " + kind + " " + shown(name) +
                   ", which the platform does not have");
}

/// An interface that an hpfm document lists is one of the platform already.
void checkListedTwice(const LocatedJson& json, const Node& bus,
                      const std::vector<const HpfmNames*>& documents, Report& report) {
    const std::string name = bus.text("name");
    if (name.empty()) return;
    for (const HpfmNames* document : documents) {
        const auto first = document->buses.find(name);
        if (first == document->buses.end()) continue;
        report.add("duplicate", json.place(bus, "name"),
                   "the bus interface " + shown(name) + " stands in the hpfm document on line " +
                       std::to_string(first->second) + " already");
        return;
    }
}

void checkInterfaces(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                     Report& report) {
    const std::set<std::string> clocks = clocksOf(json);
    const std::set<std::string> resets = resetsOf(json, documents);
    for (const Node& bus : itemsOf(json.root(), "busInterfaces")) {
        const std::string name = bus.text("name");
        checkListedTwice(json, bus, documents, report);
        checkReference("clock-reference", "clock", json.place(bus, "clockRef"), name,
                       bus.text("clockRef"), clocks, report);
        if (!resets.empty()) {
            checkReference("reset-reference", "reset", json.place(bus, "resetRef"), name,
                           bus.text("resetRef"), resets, report);
        }
        SegmentNames segments(name);
        std::vector<std::string> banks;
        for (const Node& segment : itemsOf(bus, "addressSegments")) {
            const std::string index = segment.text("index");
            segments.add(segment.text("name"), index.empty() ? "0" : index,
                         json.place(segment, "name"), report);
            banks.push_back(segment.text("auto"));
        }
        if (name == lmx::HBM_SUBSYSTEM) checkBanks(json.place(bus), banks, report);
    }
}

}  // namespace

void checkItems(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                Report& report) {
    for (const auto& [list, key] :
         {std::pair{"systemClocks", "name"}, std::pair{"systemClocks", "id"},
          std::pair{"memories", "name"}, std::pair{"busInterfaces", "name"},
          std::pair{"devices", "name"}, std::pair{"dpePartitions", "dpeInst"},
          std::pair{"reconfigPartitionIDs", "designID"}}) {
        checkUnique(json, itemsOf(json.root(), list), key, shown(list), report);
    }
    for (const auto& [list, key] :
         {std::pair{"interfaces", "id"}, std::pair{"resources", "type"}}) {
        checkUnique(json, itemsOf(json.root(), list), key, shown(list), report);
    }
    if (const auto board = json.root().find("board")) {
        checkUnique(json, itemsOf(*board, "connectors"), "name", "'board.connectors'", report);
    }
    for (const Node& device : itemsOf(json.root(), "devices")) {
        const auto core = device.find("core");
        if (!core) continue;
        for (const char* const list : {"pBlocks", "ports", "resources", "configParams"}) {
            checkUnique(json, itemsOf(*core, list), "name", shown("core." + std::string(list)),
                        report);
        }
    }
    for (const Node& partition : itemsOf(json.root(), "dpePartitions")) {
        checkUnique(json, itemsOf(partition, "partitions"), "dpeInst",
                    "the sub-partitions of " + shown(partition.text("dpeInst")), report);
    }
    checkClocks(json, report);
    checkMemories(json, report);
    checkInterfaces(json, documents, report);
    checkValues(json, report);
    checkWords(json, report);
    checkArray(json, report);
    checkNames(json, documents, report);
}

void checkReferences(const HpfmNames& document, const std::string& file, const LocatedJson& json,
                     const std::vector<const HpfmNames*>& documents, Report& report) {
    std::set<std::string> clocks = clocksOf(json);
    clocks.insert(document.clocks.begin(), document.clocks.end());
    const std::set<std::string> resets = resetsOf(json, documents);
    for (const HpfmNames::Reference& reference : document.references) {
        const Place place{file, reference.line, reference.column};
        checkReference("clock-reference", "clock", place, reference.bus, reference.clock, clocks,
                       report);
        if (resets.empty()) continue;
        checkReference("reset-reference", "reset", place, reference.bus, reference.reset, resets,
                       report);
    }
    std::set<std::string> ids = document.clockIds;
    for (const Node& clock : itemsOf(json.root(), "systemClocks")) {
        ids.insert(idOf(clock));
    }
    for (const HpfmNames::DefaultClock& standard : document.defaultClocks) {
        // Without any clock 0 says that there is none.
        if (ids.count(std::to_string(standard.id)) > 0 || (ids.empty() && standard.id == 0)) {
            continue;
        }
        report.add(
            "default-clock", {file, standard.line, standard.column},
            "the default clock is " + std::to_string(standard.id) + ", and no clock has that id");
    }
}

}  // namespace mav_platform::check
