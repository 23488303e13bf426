// SPDX-License-Identifier: Apache-2.0
#include "services/check/CheckArchive.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "formats/emulation/MAVEmulationLMX.h"
#include "formats/hpfm/MAVHpfmLMX.h"
#include "json/Convert.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "services/check/CheckXml.h"

namespace mav_platform::check {
namespace {

using json::Node;

constexpr std::array<std::string_view, 3> FOLDER_TYPES{"IP_REPO_PATH", "IP_CACHE_DIR",
                                                       "BOARD_REPO_PATH"};

std::string textOf(const Node& node, std::string_view key) {
    const auto found = node.find(key);
    return found ? std::string(found->data()) : std::string();
}

/// The items of a list; none when there is no such list.
std::vector<Node> itemsOf(const Node& node, std::string_view key) {
    std::vector<Node> items;
    if (const auto list = node.find(key)) {
        for (const Node& item : *list) items.push_back(item);
    }
    return items;
}

/// One archive that is looked at.
class ArchiveCheck {
  public:
    ArchiveCheck(const std::string& path, Report& report) : archive_(path), report_(report) {
        for (const auto& member : archive_.members()) members_.insert(member.name);
    }
    void run() {
        const std::string name = HUTFile::getExt(archive_.path()) + ".json";
        const bool own = checkPlatform("", name);
        const bool emulation = checkPlatform(HMAVHardwarePlatform::getHwEmuDir() + "/", name);
        if (!own && !emulation) {
            report_.add(
                "metadata", {archive_.path()},
                "there is neither a member " + shown(name) + " nor " + shown("alt_" + name));
        }
        checkIndex();
        checkUnlisted();
        checkDigest();
    }

  private:
    std::string fileOf(const std::string& member) const { return archive_.path() + "/" + member; }

    /// The member's text; nothing after a report, or when it is absent.
    std::optional<std::string> read(const std::string& member) {
        if (members_.count(member) == 0) return std::nullopt;
        try {
            return archive_.read(member, HUTZip::MAX_METADATA_SIZE);
        } catch (const HEXError& error) {
            report_.add("unreadable", {fileOf(member)}, error.what());
            return std::nullopt;
        }
    }
    std::optional<LocatedJson> readJson(const std::string& member) {
        listed_.insert(member);
        auto text = read(member);
        return text ? LocatedJson::parse(std::move(*text), fileOf(member), report_) : std::nullopt;
    }

    /// The metadata below a folder of the archive, both members where there are two. False when
    /// there is none.
    bool checkPlatform(const std::string& folder, const std::string& name) {
        bool any = false;
        for (const std::string& member : {folder + "alt_" + name, folder + name}) {
            if (members_.count(member) == 0) continue;
            any = true;
            const auto json = readJson(member);
            if (!json) continue;
            checkSchema(*json, "metadata", report_);
            checkMetadata(*json, folder);
        }
        return any;
    }

    void checkMetadata(const LocatedJson& json, const std::string& folder) {
        const Node root = json.root();
        checkFiles(json, folder);
        for (const auto& [list, key] :
             {std::pair{"systemClocks", "name"}, std::pair{"systemClocks", "id"},
              std::pair{"memories", "name"}, std::pair{"busInterfaces", "name"},
              std::pair{"devices", "name"}, std::pair{"dpePartitions", "dpeInst"},
              std::pair{"reconfigPartitionIDs", "designID"}}) {
            checkUnique(json, list, key);
        }
        checkClocks(json);
        checkMemories(json);
        checkReferences(json);
        std::vector<std::string> banks;
        for (const Node& bus : itemsOf(root, "busInterfaces")) {
            if (textOf(bus, "name") != lmx::HBM_SUBSYSTEM) continue;
            for (const Node& bank : itemsOf(bus, "addressSegments")) {
                banks.push_back(textOf(bank, "auto"));
            }
            checkBanks(json.place(bus), banks);
            banks.clear();
        }
    }

    void checkUnique(const LocatedJson& json, const char* list, const char* key) {
        std::map<std::string, Place> seen;
        for (const Node& item : itemsOf(json.root(), list)) {
            const std::string text = textOf(item, key);
            if (text.empty()) continue;
            const auto [first, isNew] = seen.emplace(text, json.place(item));
            if (isNew) continue;
            report_.add("duplicate", json.place(item),
                        "the " + std::string(key) + " " + shown(text) + " in '" + list +
                            "' stands on line " + std::to_string(first->second.line) + " already");
        }
    }

    void checkFiles(const LocatedJson& json, const std::string& folder) {
        for (const Node& item : itemsOf(json.root(), "files")) {
            const std::string type = textOf(item, "type");
            const std::string member = folder + textOf(item, "name");
            const bool isFolder =
                std::find(FOLDER_TYPES.begin(), FOLDER_TYPES.end(), type) != FOLDER_TYPES.end();
            if (!list(isFolder ? member + "/" : member)) {
                report_.add("missing-member", json.place(item),
                            shown(member) + " of type " + shown(type) + " is not in the archive");
                continue;
            }
            checkListed(type, member, folder);
        }
        if (const auto board = json.root().find("board")) {
            for (const Node& item : *board) {
                if (item.key().substr(0, 9) != "imageFile" || item.data().empty()) continue;
                if (!list(folder + std::string(item.data())) && !list(std::string(item.data()))) {
                    report_.add("missing-member", json.place(item),
                                "the image " + shown(item.data()) + " is not in the archive");
                }
            }
        }
    }

    /// Notes that the member, or what lies in the folder, is listed; false when there is nothing.
    bool list(const std::string& name) {
        if (name.empty() || name.back() != '/') {
            if (members_.count(name) == 0) return false;
            listed_.insert(name);
            return true;
        }
        folders_.insert(name);
        const auto first = members_.lower_bound(name);
        return first != members_.end() && first->compare(0, name.size(), name) == 0;
    }

    /// A listed document whose format is known.
    void checkListed(const std::string& type, const std::string& member,
                     const std::string& folder) {
        if (!checkedDocuments_.insert(member).second) return;
        if (type == "HPFM") {
            checkHpfm(member);
        } else if (type == "EMU_JSON") {
            if (const auto json = readJson(member)) {
                checkSchema(*json, "emulation", report_);
                for (const Node& variant : itemsOf(json->root(), "emulations")) {
                    for (const Node& file : itemsOf(variant, "files")) {
                        checkEmulationFile(textOf(file, "name"), folder, json->place(file));
                    }
                }
            }
        } else if (type == "EMU_XML") {
            const auto text = read(member);
            if (!text) return;
            const auto document =
                bindDocument(lmx::emulationFormat(), *text, fileOf(member), report_);
            if (!document) return;
            for (const auto& variant : document->emulations.emulations) {
                for (const auto& file : variant.files.files) {
                    checkEmulationFile(file.name, folder, {fileOf(member)});
                }
            }
        } else if (type == "EXT_META_JSON") {
            if (const auto json = readJson(member))
                checkSchema(*json, "extension-metadata", report_);
        }
    }

    void checkEmulationFile(const std::string& name, const std::string& folder,
                            const Place& place) {
        if (list(folder + name) || list(name)) return;
        report_.add("missing-member", place,
                    "the emulation file " + shown(name) + " is not in the archive");
    }

    void checkHpfm(const std::string& member) {
        const auto text = read(member);
        if (!text) return;
        const std::string file = fileOf(member);
        const auto document = bindDocument(lmx::hpfmFormat(), *text, file, report_);
        if (!document) return;
        std::map<std::string, std::size_t> seen;
        const auto check = [&](const lmx::HpfmBusInterface& bus) {
            const auto [first, isNew] = seen.emplace(bus.name, bus.line);
            if (!isNew && !bus.name.empty()) {
                report_.add("duplicate", {file, bus.line, bus.column},
                            "the bus interface " + shown(bus.name) + " stands on line " +
                                std::to_string(first->second) + " already");
            }
            if (bus.name != lmx::HBM_SUBSYSTEM) return;
            std::vector<std::string> banks;
            for (const auto& bank : bus.addressSegments) banks.push_back(bank.automatic);
            checkBanks({file, bus.line, bus.column}, banks);
        };
        for (const auto& component : document->components) {
            for (const auto& bus : component.busInterfaces) check(bus);
        }
        for (const auto& bus : document->busInterfaces) check(bus);
    }

    void checkBanks(const Place& place, const std::vector<std::string>& banks) {
        const auto assignable = banks.size() - static_cast<std::size_t>(
                                                   std::count(banks.begin(), banks.end(), "false"));
        const auto preferred =
            static_cast<std::size_t>(std::count(banks.begin(), banks.end(), "preferred"));
        if (preferred == 0 || preferred == assignable) return;
        report_.add("hbm-preferred", place,
                    std::to_string(preferred) + " of " + std::to_string(assignable) +
                        " assignable HBM banks are preferred; prefer all of them or none");
    }

    void checkClocks(const LocatedJson& json) {
        const std::vector<Node> clocks = itemsOf(json.root(), "systemClocks");
        if (clocks.empty()) return;
        std::string id = "0";
        for (const Node& clock : clocks) {
            if (json::toBool(textOf(clock, "default"))) id = textOf(clock, "id");
        }
        const bool known = std::any_of(clocks.begin(), clocks.end(), [&](const Node& clock) {
            const std::string own = textOf(clock, "id");
            return own == id || (own.empty() && id == "0");
        });
        if (known) return;
        report_.add("default-clock", json.place(*json.root().find("systemClocks")),
                    "no clock is marked as default, and none has the id 0");
    }

    void checkMemories(const LocatedJson& json) {
        struct Range {
            std::uint64_t low, high;
            std::string name;
            Place place;
        };
        std::vector<Range> ranges;
        for (const Node& memory : itemsOf(json.root(), "memories")) {
            const auto low = json::toDecimalOrHex(textOf(memory, "lowAddress"));
            const auto high = json::toDecimalOrHex(textOf(memory, "highAddress"));
            if (!low || !high || *high <= *low) continue;
            ranges.push_back({*low, *high, textOf(memory, "name"), json.place(memory)});
        }
        std::stable_sort(ranges.begin(), ranges.end(),
                         [](const Range& a, const Range& b) { return a.low < b.low; });
        const Range* widest = nullptr;  // the one that reaches furthest of those before
        for (const Range& range : ranges) {
            if (widest != nullptr && range.low <= widest->high) {
                report_.add("memory-overlap", range.place,
                            "the addresses of " + shown(range.name) + " overlap those of " +
                                shown(widest->name) + " on line " +
                                std::to_string(widest->place.line));
            }
            if (widest == nullptr || range.high > widest->high) widest = &range;
        }
    }

    void checkReferences(const LocatedJson& json) {
        std::set<std::string> clocks;
        for (const Node& clock : itemsOf(json.root(), "systemClocks")) {
            clocks.insert(textOf(clock, "name"));
            clocks.insert(textOf(clock, "origName"));
        }
        std::set<std::string> resets;
        const std::vector<Node> interfaces = itemsOf(json.root(), "busInterfaces");
        for (const Node& bus : interfaces) {
            if (textOf(bus, "typeRef") == "reset") resets.insert(textOf(bus, "name"));
        }
        for (const Node& bus : interfaces) {
            const std::string clock = textOf(bus, "clockRef");
            if (!clocks.empty() && !clock.empty() && clocks.count(clock) == 0) {
                report_.add("clock-reference", json.place(bus),
                            "the bus interface " + shown(textOf(bus, "name")) +
                                " refers to the clock " + shown(clock) +
                                ", which the platform does not have");
            }
            const std::string reset = textOf(bus, "resetRef");
            if (!resets.empty() && !reset.empty() && resets.count(reset) == 0) {
                report_.add("reset-reference", json.place(bus),
                            "the bus interface " + shown(textOf(bus, "name")) +
                                " refers to the reset " + shown(reset) +
                                ", which the platform does not have");
            }
        }
    }

    void checkIndex() {
        if (members_.count("vma.json") == 0) return;
        const auto json = readJson("vma.json");
        if (!json) return;
        checkSchema(*json, "vma", report_);
        for (const Node& item : itemsOf(json->root(), "files")) {
            const std::string name = textOf(item, "name");
            const bool isBd = textOf(item, "type") == "DR_BD";
            if (list(isBd ? "bd/" : name) || list(name + "/")) continue;
            report_.add("missing-member", json->place(item),
                        shown(name) + " is not in the archive");
        }
    }

    bool isInListedFolder(const std::string& member) const {
        for (std::size_t i = member.find('/'); i != std::string::npos;
             i = member.find('/', i + 1)) {
            if (folders_.count(member.substr(0, i + 1)) > 0) return true;
        }
        return false;
    }

    void checkUnlisted() {
        for (const std::string& member : members_) {
            if (listed_.count(member) > 0 || member.ends_with('/')) continue;
            if (isInListedFolder(member)) continue;
            report_.add("unlisted-member", {archive_.path()},
                        "the member " + shown(member) + " is not listed anywhere");
        }
    }

    void checkDigest() {
        switch (HUTZip::verifyDigest(archive_.path())) {
            case mav_host::DigestState::VALID:
            case mav_host::DigestState::NO_KEY:
                break;
            case mav_host::DigestState::MISSING:
                report_.add("digest", {archive_.path()}, "the archive carries no digest");
                break;
            case mav_host::DigestState::MISMATCH:
                report_.add("digest", {archive_.path()},
                            "the digest does not match: members were changed after it was made, or "
                            "it was made with another key");
                break;
            case mav_host::DigestState::UNKEYED:
                report_.add("digest", {archive_.path()},
                            "the digest was made without a key, so anyone could have made it");
                break;
        }
    }

    const mav_host::ZipArchive archive_;
    Report& report_;
    std::set<std::string> members_;
    std::set<std::string> listed_;
    std::set<std::string> folders_;  ///< each with a "/" behind
    std::set<std::string> checkedDocuments_;
};

}  // namespace

void checkArchive(const std::string& path, Report& report) {
    try {
        ArchiveCheck(path, report).run();
    } catch (const HEXError& error) {
        report.add("unreadable", {path}, error.what());
    }
}

}  // namespace mav_platform::check
