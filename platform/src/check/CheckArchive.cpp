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
#include "check/CheckNames.h"
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
        for (const auto& member : archive_.members()) addMember(member.name);
    }
    ArchiveIdentity run() {
        const auto names = metadataMembers(HUTFile::getExt(archive_.path()));
        own_ = names[0];
        const bool own = checkPlatform("", {names[1], names[0]});
        checkPlatform(HMAVHardwarePlatform::hwEmuMemberName(""), {names[3], names[2]});
        if (!own) {
            report_.add("metadata", {archive_.path()},
                        "there is neither a member " + shown(names[0]) + " nor " + shown(names[1]));
        }
        checkIndex();
        // Without metadata there is nothing that could list them.
        if (own) checkUnlisted();
        checkDigest();
        return identity_;
    }

  private:
    /// Most bytes of a listed document, as when it is loaded.
    static constexpr std::uint64_t LISTED_LIMIT = mav_host::xml::Limits().bytes;

    std::string fileOf(const std::string& member) const { return archive_.path() + "/" + member; }

    void addMember(const std::string& name) {
        const bool isFolder = name.ends_with('/');
        if (!members_.insert(name).second) {
            report_.add("duplicate", {archive_.path()},
                        "the member " + shown(name) +
                            " stands more than once; readers differ in which one counts");
        } else if (!HUTZip::isMemberName(isFolder ? name.substr(0, name.size() - 1) : name)) {
            report_.add("member-name", {archive_.path()},
                        "the name of the member " + shown(name) +
                            " is refused by who extracts or packs it");
        }
    }

    /// The member's text; nothing after a report, or when it is absent.
    std::optional<std::string> read(const std::string& member, std::uint64_t limit) {
        if (members_.count(member) == 0) return std::nullopt;
        try {
            return archive_.read(member, limit);
        } catch (const HEXError& error) {
            unreadable(member, error);
            return std::nullopt;
        }
    }
    void unreadable(const std::string& member, const HEXError& error) {
        if (!unreadable_.insert(member).second) return;
        report_.add("unreadable", {fileOf(member)}, error.what());
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
        // The alternative metadata may tell of another platform.
        if (json.file() == fileOf(own_)) {
            checkAgreement(json, documents, report_);
            identify(json);
        }
        for (const std::string& member : metadataHpfms_) {
            // What the other metadata of the folder lists too is judged with the first one.
            if (judged_.insert(member).second) {
                checkReferences(hpfms_.at(member), fileOf(member), json, documents, report_);
            }
        }
    }

    void identify(const LocatedJson& json) {
        name_ = platformName(json);
        const Node root = json.root();
        identity_ = {root.text("vendor"), sameNumber(root.text("versionMajor")) + "." +
                                              sameNumber(root.text("versionMinor"))};
        for (const Node& file : itemsOf(root, "files")) {
            types_[file.text("type")].insert(file.text("name"));
        }
    }

    /// A file that is listed twice, or another one of a type of which readers take one.
    void checkOnce(const LocatedJson& json, const Node& item, const std::string& type,
                   std::map<std::string, std::set<std::string>>& seen) {
        static const std::set<std::string> ALONE{"HPFM",    "DPEPRJ",        "EMU_JSON",
                                                 "EMU_XML", "EXT_META_JSON", "META_JSON"};
        std::set<std::string>& names = seen[type];
        const std::string name = item.text("name");
        const bool isFirst = names.empty();
        if (!names.insert(name).second) {
            report_.add(
                "duplicate", json.place(item, "name"),
                "the file " + shown(name) + " of type " + shown(type) + " is listed already");
        } else if (!isFirst && ALONE.count(type) > 0) {
            report_.add("duplicate", json.place(item, "type"),
                        "another file of type " + shown(type) +
                            " is listed already; only one of them is used");
        }
    }

    void checkFiles(const LocatedJson& json, const std::string& folder) {
        std::map<std::string, std::set<std::string>> seen;
        for (const Node& item : itemsOf(json.root(), "files")) {
            const std::string type = item.text("type");
            const auto name = item.find("name");
            if (!name) continue;  // the schema asks for it
            checkOnce(json, item, type, seen);
            if (name->data().empty()) {
                report_.add("missing-member", json.place(*name),
                            "a file of type " + shown(type) + " has an empty name");
                continue;
            }
            std::string member = folder + std::string(name->data());
            const bool isFolder = HMAVPfmFileTypes::isFolder(type);
            while (isFolder && member.ends_with('/')) member.pop_back();
            if (!list(isFolder ? member + "/" : member)) {
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
        } else if (member.ends_with(".json")) {
            readJson(member);
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
        const std::string platform = json->root().text("pfmName");
        if (!platform.empty() && !name_.empty() && sameName(platform) != name_) {
            report_.add("contradiction", json->place(json->root(), "pfmName"),
                        "the index is of the platform " + shown(platform) + ", the metadata of " +
                            shown(name_));
        }
        for (const Node& item : itemsOf(json->root(), "files")) {
            const std::string name = item.text("name");
            const std::string place = HVMAArchive::placeOf(item.text("type"), name);
            checkIndexed(*json, item);
            if (list(place) || list(place + "/") || list(name + "/")) continue;
            report_.add("missing-member", json->place(item, "name"),
                        shown(name) + " is not in the archive");
        }
    }

    /// What the metadata lists under the type too has one of its names.
    void checkIndexed(const LocatedJson& json, const Node& item) {
        const auto known = types_.find(item.text("type"));
        const std::string name = item.text("name");
        if (known == types_.end() || name.empty() || known->second.count(name) > 0) return;
        report_.add("contradiction", json.place(item, "name"),
                    "the index lists " + shown(name) + " of type " + shown(known->first) +
                        ", the metadata " + shown(*known->second.begin()));
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
        const mav_host::DigestState state = HUTZip::verifyDigest(archive_.path());
        if (state != mav_host::DigestState::VALID) checkContents();
        switch (state) {
            case mav_host::DigestState::VALID:
                break;
            case mav_host::DigestState::NO_KEY:
                report_.add("digest-key", {archive_.path()},
                            "the digest cannot be checked: it was made with a key, and "
                            "MAV_KEY_FILE names none");
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

    /// Every member against its check sum, for no digest vouches for them.
    void checkContents() {
        for (const std::string& member : members_) {
            try {
                archive_.read(member, UINT64_MAX, [](const char*, std::size_t) {});
            } catch (const HEXError& error) {
                unreadable(member, error);
            }
        }
    }

    const mav_host::ZipArchive archive_;
    Report& report_;
    std::set<std::string> members_;
    std::string own_;  ///< the metadata member, not its alternative
    ArchiveIdentity identity_;
    std::string name_;                                    ///< of the platform
    std::map<std::string, std::set<std::string>> types_;  ///< names of listed files
    std::set<std::string> unreadable_;                    ///< that was told of
    std::set<std::string> listed_;
    std::set<std::string> folders_;  ///< each with a "/" behind
    std::set<std::string> checkedDocuments_;
    std::map<std::string, HpfmNames> hpfms_;  ///< by member
    std::set<std::string> metadataHpfms_;     ///< those that the metadata at hand lists
    std::set<std::string> judged_;            ///< those whose references were looked at
};

}  // namespace

ArchiveIdentity checkArchive(const std::string& path, Report& report) {
    report.archive(path);
    try {
        return ArchiveCheck(path, report).run();
    } catch (const HEXError& error) {
        report.add("unreadable", {path}, error.what());
        return {};
    }
}

}  // namespace mav_platform::check
