// SPDX-License-Identifier: Apache-2.0
#include "check/CheckArchive.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "check/CheckHpfm.h"
#include "check/CheckMetadata.h"
#include "check/CheckXml.h"
#include "formats/emulation/MAVEmulationLMX.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/TypedMembers.h"

namespace mav_platform::check {
namespace {

using json::Node;

/// One archive that is looked at.
class ArchiveCheck {
  public:
    ArchiveCheck(const std::string& path, Report& report) : archive_(path), report_(report) {
        for (const auto& member : archive_.members()) members_.insert(member.name);
    }
    void run() {
        const auto names = metadataMembers(HUTFile::getExt(archive_.path()));
        const bool own = checkPlatform("", {names[1], names[0]});
        const bool emulation =
            checkPlatform(HMAVHardwarePlatform::hwEmuMemberName(""), {names[3], names[2]});
        if (!own && !emulation) {
            report_.add("metadata", {archive_.path()},
                        "there is neither a member " + shown(names[0]) + " nor " + shown(names[1]));
        }
        checkIndex();
        checkUnlisted();
        checkDigest();
    }

  private:
    /// Most bytes of a listed document, as when it is loaded.
    static constexpr std::uint64_t LISTED_LIMIT = mav_host::xml::Limits().bytes;

    std::string fileOf(const std::string& member) const { return archive_.path() + "/" + member; }

    /// The member's text; nothing after a report, or when it is absent.
    std::optional<std::string> read(const std::string& member, std::uint64_t limit) {
        if (members_.count(member) == 0) return std::nullopt;
        try {
            return archive_.read(member, limit);
        } catch (const HEXError& error) {
            report_.add("unreadable", {fileOf(member)}, error.what());
            return std::nullopt;
        }
    }
    std::optional<LocatedJson> readJson(const std::string& member,
                                        std::uint64_t limit = LISTED_LIMIT) {
        listed_.insert(member);
        auto text = read(member, limit);
        return text ? LocatedJson::parse(std::move(*text), fileOf(member), report_) : std::nullopt;
    }

    /// The metadata below a folder of the archive, both members where there are two. False when
    /// there is none.
    bool checkPlatform(const std::string& folder, const std::array<std::string, 2>& members) {
        bool any = false;
        for (const std::string& member : members) {
            if (members_.count(member) == 0) continue;
            any = true;
            const auto json = readJson(member, HUTZip::MAX_METADATA_SIZE);
            if (!json) continue;
            checkSchema(*json, "metadata", report_);
            checkMetadata(*json, folder);
        }
        return any;
    }

    void checkMetadata(const LocatedJson& json, const std::string& folder) {
        metadataHpfms_.clear();
        checkFiles(json, folder);
        std::vector<const HpfmNames*> documents;
        for (const std::string& member : metadataHpfms_) documents.push_back(&hpfms_.at(member));
        checkItems(json, documents, report_);
        for (const std::string& member : metadataHpfms_) {
            // What the other metadata of the folder lists too is judged with the first one.
            if (judged_.insert(member).second) {
                checkReferences(hpfms_.at(member), fileOf(member), json, documents, report_);
            }
        }
    }

    void checkFiles(const LocatedJson& json, const std::string& folder) {
        for (const Node& item : itemsOf(json.root(), "files")) {
            const std::string type = item.text("type");
            const auto name = item.find("name");
            if (!name) continue;  // the schema asks for it
            if (name->data().empty()) {
                report_.add("missing-member", json.place(*name),
                            "a file of type " + shown(type) + " has an empty name");
                continue;
            }
            const std::string member = folder + std::string(name->data());
            if (!list(HMAVPfmFileTypes::isFolder(type) ? member + "/" : member)) {
                report_.add("missing-member", json.place(*name),
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
        if (type == "HPFM") {
            checkListedHpfm(member);
            return;
        }
        if (!checkedDocuments_.insert(member).second) return;
        if (type == "EMU_JSON") {
            checkEmulation(member, folder);
        } else if (type == "EMU_XML") {
            checkEmulationXml(member, folder);
        } else if (type == "EXT_META_JSON") {
            if (const auto json = readJson(member))
                checkSchema(*json, "extension-metadata", report_);
        }
    }

    void checkListedHpfm(const std::string& member) {
        if (hpfms_.count(member) == 0) {
            const auto text = read(member, LISTED_LIMIT);
            if (!text) return;
            auto names = checkHpfm(*text, fileOf(member), report_);
            if (!names) return;
            hpfms_.emplace(member, std::move(*names));
        }
        metadataHpfms_.insert(member);
    }

    void checkEmulation(const std::string& member, const std::string& folder) {
        const auto json = readJson(member);
        if (!json) return;
        checkSchema(*json, "emulation", report_);
        const std::vector<Node> variants = itemsOf(json->root(), "emulations");
        checkUnique(*json, variants, "name", "'emulations'", report_);
        for (const Node& variant : variants) {
            for (const Node& file : itemsOf(variant, "files")) {
                checkEmulationFile(file.text("name"), folder, json->place(file, "name"));
            }
        }
    }

    void checkEmulationXml(const std::string& member, const std::string& folder) {
        const auto text = read(member, LISTED_LIMIT);
        if (!text) return;
        const std::string path = fileOf(member);
        bool whole = true;
        const auto document = bindDocument(lmx::emulationFormat(), *text, path, report_, &whole);
        if (!document) return;
        std::map<std::string, std::size_t> seen;
        for (const auto& variant : document->emulations.emulations) {
            const auto [first, isNew] = seen.emplace(variant.name, variant.line);
            if (!isNew && !variant.name.empty()) {
                report_.add("duplicate", {path, variant.line, variant.column},
                            "the emulation " + shown(variant.name) + " stands on line " +
                                std::to_string(first->second) + " already");
            }
            for (const auto& file : variant.files.files) {
                if (!whole && file.name.empty()) continue;
                checkEmulationFile(file.name, folder, {path, file.line, file.column});
            }
        }
    }

    void checkEmulationFile(const std::string& name, const std::string& folder,
                            const Place& place) {
        if (list(folder + name) || list(name)) return;
        report_.add("missing-member", place,
                    "the emulation file " + shown(name) + " is not in the archive");
    }

    void checkIndex() {
        if (members_.count("vma.json") == 0) return;
        const auto json = readJson("vma.json", HUTZip::MAX_METADATA_SIZE);
        if (!json) return;
        checkSchema(*json, "vma", report_);
        for (const Node& item : itemsOf(json->root(), "files")) {
            const std::string name = item.text("name");
            const std::string place = HVMAArchive::placeOf(item.text("type"), name);
            if (list(place) || list(place + "/") || list(name + "/")) continue;
            report_.add("missing-member", json->place(item, "name"),
                        shown(name) + " is not in the archive");
        }
    }

    /// The listed folders, in order, without those that lie in another one.
    std::vector<std::string_view> outermostFolders() const {
        std::vector<std::string_view> outermost;
        for (const std::string& folder : folders_) {
            if (outermost.empty() || !folder.starts_with(outermost.back())) {
                outermost.push_back(folder);
            }
        }
        return outermost;
    }

    void checkUnlisted() {
        const std::vector<std::string_view> folders = outermostFolders();
        for (const std::string& member : members_) {
            if (listed_.count(member) > 0 || member.ends_with('/')) continue;
            // None of them begins another one, so that only the one before can hold the member.
            const auto after = std::upper_bound(folders.begin(), folders.end(), member);
            if (after != folders.begin() && member.starts_with(*std::prev(after))) continue;
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
    std::map<std::string, HpfmNames> hpfms_;  ///< by member
    std::set<std::string> metadataHpfms_;     ///< those that the metadata at hand lists
    std::set<std::string> judged_;            ///< those whose references were looked at
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
