// SPDX-License-Identifier: Apache-2.0
#include "check/CheckNames.h"

#include <algorithm>
#include <set>

#include "check/CheckMetadata.h"
#include "json/Convert.h"
#include "mav_host/Letters.h"

namespace mav_platform::check {
namespace {

using json::Node;
using Names = std::set<std::string>;

std::string near(const std::string& name, const Names& known) {
    return meant(name, {known.begin(), known.end()});
}

void checkNoc(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
              Report& report) {
    Names buses, instances;
    for (const Node& bus : itemsOf(json.root(), "busInterfaces")) {
        buses.insert(bus.text("name"));
        instances.insert(bus.text("instRef"));
    }
    for (const Node& design : itemsOf(json.root(), "designIpInstances")) {
        instances.insert(design.text("instance"));
    }
    for (const HpfmNames* document : documents) {
        for (const auto& [name, line] : document->buses) buses.insert(name);
        instances.insert(document->instances.begin(), document->instances.end());
    }
    const auto connected = [&](const std::string& name, const Place& place) {
        if (name.empty() || buses.count(name) > 0) return;
        report.add("dangling-name", place,
                   "the NoC record names the bus interface " + shown(name) +
                       ", which the platform does not have" + near(name, buses));
    };
    for (const HpfmNames* document : documents) {
        for (const HpfmNames::Named& bus : document->connected) connected(bus.name, bus.place);
    }
    for (const Node& record : itemsOf(json.root(), "nocConnectivity")) {
        const std::string instance = record.text("instRef");
        if (!instance.empty() && instances.count(instance) == 0) {
            report.add("dangling-name", json.place(record, "instRef"),
                       "the NoC record is of the instance " + shown(instance) +
                           ", which nothing else names" + near(instance, instances));
        }
        for (const Node& bus : itemsOf(record, "busInterfaces")) {
            connected(std::string(bus.data()), json.place(bus));
        }
    }
}

/// The super logic regions of the devices; empty when none of them counts its own.
Names regions(const LocatedJson& json) {
    unsigned most = 0;
    for (const Node& device : itemsOf(json.root(), "devices")) {
        most = std::max(most, static_cast<unsigned>(
                                  std::clamp(json::toLong(device.text("numSLRs"), 0), 0L, 1000L)));
    }
    Names names;
    for (unsigned number = 0; number < most; ++number) names.insert("SLR" + std::to_string(number));
    return names;
}

void checkRegions(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                  Report& report) {
    const Names known = regions(json);
    if (known.empty()) return;
    const auto check = [&](const std::string& name, const Place& place) {
        if (name.empty() || known.count(name) > 0) return;
        report.add(
            "dangling-name", place,
            shown(name) + " is no super logic region of the device; it has " +
                (known.size() == 1 ? "SLR0" : "SLR0 to SLR" + std::to_string(known.size() - 1)));
    };
    for (const Node& bus : itemsOf(json.root(), "busInterfaces")) {
        check(bus.text("slr"), json.place(bus, "slr"));
        for (const Node& segment : itemsOf(bus, "addressSegments")) {
            check(segment.text("slr"), json.place(segment, "slr"));
        }
    }
    for (const HpfmNames* document : documents) {
        for (const HpfmNames::Named& region : document->regions) check(region.name, region.place);
    }
    for (const Node& device : itemsOf(json.root(), "devices")) {
        const auto core = device.find("core");
        if (!core) continue;
        for (const Node& name : itemsOf(*core, "validSlrs")) {
            check(std::string(name.data()), json.place(name));
        }
    }
}

/// The first thing that was said, and what differs from it.
class Agreement {
  public:
    Agreement(std::string subject, Report& report)
        : subject_(std::move(subject)), report_(report) {}
    void tell(const std::string& text, const std::string& called, const Place& place) {
        if (text.empty()) return;
        if (first_.empty()) {
            first_ = text;
            where_ = called + " on line " + std::to_string(place.line);
        } else if (!mav_host::equalLetters(text, first_)) {
            report_.add("contradiction", place,
                        called + " tells " + shown(text) + " as " + subject_ + ", " + where_ +
                            " tells " + shown(first_));
        }
    }

  private:
    const std::string subject_;
    Report& report_;
    std::string first_, where_;
};

/// Platforms with several devices have several parts.
void checkPart(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
               Report& report) {
    const std::vector<Node> devices = itemsOf(json.root(), "devices");
    if (devices.size() > 1) return;
    Agreement part("the part", report);
    if (const auto board = json.root().find("board")) {
        part.tell(board->text("part"), "the board", json.place(*board, "part"));
    }
    for (const Node& device : devices) {
        part.tell(device.text("fpgaPart"), "the device", json.place(device, "fpgaPart"));
        if (const auto item = device.find("part")) {
            part.tell(item->text("name"), "the device's part", json.place(*item, "name"));
        }
    }
    for (const Node& rom : itemsOf(json.root(), "featureRoms")) {
        part.tell(rom.text("fpgaPartName"), "the feature ROM", json.place(rom, "fpgaPartName"));
    }
    for (const HpfmNames* document : documents) {
        part.tell(document->part, "the hpfm document", document->partPlace);
    }
}

}  // namespace

std::string sameName(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == ':' || c == '.'; }, '_');
    return name;
}

std::string platformName(const LocatedJson& json) {
    const Node root = json.root();
    return sameName(root.text("vendor") + "_" + root.text("boardId") + "_" + root.text("name") +
                    "_" + sameNumber(root.text("versionMajor")) + "_" +
                    sameNumber(root.text("versionMinor")));
}

void checkNames(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                Report& report) {
    checkNoc(json, documents, report);
    checkRegions(json, documents, report);
}

void checkAgreement(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                    Report& report) {
    checkPart(json, documents, report);
    const std::string own = platformName(json);
    for (const Node& rom : itemsOf(json.root(), "featureRoms")) {
        const std::string name = rom.text("vbnvName");
        if (name.empty() || sameName(name) == own) continue;
        report.add(
            "contradiction", json.place(rom, "vbnvName"),
            "the feature ROM is of the platform " + shown(name) + ", this one is " + shown(own));
    }
}

}  // namespace mav_platform::check
