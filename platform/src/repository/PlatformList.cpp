// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformList.h"

#include <algorithm>
#include <map>
#include <utility>

#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Letters.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "mav_platform/partitionsFault.h"
#include "repository/IgnoreRules.h"

namespace mav_platform {
namespace {

constexpr std::size_t DEEPEST_DESCRIPTION = 3;

PlatformRow rowOf(const HMAVPlatform& platform) {
    PlatformRow row;
    row.file = platform.getPlatformFile();
    row.type = platform.getTypeString();
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    if (hardware == nullptr) {
        row.name = platform.getName();
        row.vendor = platform.getVendor();
        row.version = platform.getVersion();
        return row;
    }
    row.name = platform.getName().empty() ? hardware->getName() : platform.getName();
    row.vendor = hardware->getVendor();
    row.board = hardware->getBoardId();
    row.version = hardware->getVersion();
    row.device = hardware->getFpgaDevice();
    row.part = hardware->getFpgaPart();
    row.state = hardware->getPlatformState();
    return row;
}

/// The condition that a row does not meet; empty when it meets all.
std::string unmet(const PlatformRow& row, const PlatformFilter& filter) {
    const auto exact = [](const std::string& wanted, const std::string& text) {
        return wanted.empty() || wanted == text;
    };
    const auto anyCase = [](const std::string& wanted, const std::string& text) {
        return wanted.empty() || mav_host::equalLetters(wanted, text);
    };
    const auto is = [](const char* name, const std::string& text, const std::string& wanted) {
        return std::string("its ") + name + " is '" + text + "', not '" + wanted + "'";
    };
    if (!anyCase(filter.part, row.part)) return is("part", row.part, filter.part);
    if (!exact(filter.board, row.board)) return is("board", row.board, filter.board);
    if (!exact(filter.vendor, row.vendor)) return is("vendor", row.vendor, filter.vendor);
    if (!anyCase(filter.type, row.type)) return is("type", row.type, filter.type);
    return "";
}

/// The description that each archive belongs to, the first in the list's order.
using Owners = std::map<std::string, std::string>;

Owners ownersIn(const HSTVector<HMAVPlatform*>& platforms) {
    Owners owners;
    for (const HMAVPlatform* platform : platforms) {
        if (!platform->isQpfm()) continue;
        const std::string file = platform->getPlatformFile();
        owners.emplace(platform->getHardwarePlatformFile(), file);
        owners.emplace(platform->getHardwareEmuPlatformFile(), file);
        HSTVector<HMAVReconfigurablePartition*> partitions;
        platform->getReconfigurablePartitions(partitions);
        for (const HMAVReconfigurablePartition* partition : partitions) {
            owners.emplace(partition->getHardwarePlatformFile(), file);
            owners.emplace(partition->getHardwareEmulationPlatformFile(), file);
        }
    }
    owners.erase("");
    return owners;
}

bool isBelow(const std::string& file, const std::string& dir) {
    return file.size() > dir.size() && file.starts_with(dir) &&
           (dir.ends_with('/') || file[dir.size()] == '/');
}

std::string_view pathBelow(const std::string& file, const std::string& dir) {
    return std::string_view(file).substr(dir.ends_with('/') ? dir.size() : dir.size() + 1);
}

JSONValue jsonOf(const PlatformRow& row) {
    return JSONValue::object()
        .add("name", JSONValue::orNull(row.name))
        .add("vendor", JSONValue::orNull(row.vendor))
        .add("board", JSONValue::orNull(row.board))
        .add("version", JSONValue::orNull(row.version))
        .add("type", JSONValue::orNull(row.type))
        .add("device", JSONValue::orNull(row.device))
        .add("part", JSONValue::orNull(row.part))
        .add("state", JSONValue::orNull(row.state))
        .addPath("file", row.file)
        .addPath("partOf", row.partOf);
}

JSONValue jsonOf(const HMAVPlatformMgr::Refusal& refusal) {
    return JSONValue::object()
        .addPath("file", refusal.file)
        .add("directory", refusal.isDir)
        .add("reason", JSONValue::orNull(refusal.reason));
}

JSONValue jsonOf(const PlatformList::Answer* why) {
    if (why == nullptr) return nullptr;
    return JSONValue::object()
        .addPath("file", why->file)
        .add("state", why->state)
        .add("reason", why->reason)
        .addPath("directory", why->directory);
}

}  // namespace

/// The patterns of each searched directory; in force for the walks as long as it is installed.
class PlatformList::Ignored final : public HUTDirWalkFilter {
  public:
    Ignored(const HSTVector<std::string>& dirs, const HSTVector<std::string>& patterns) {
        constexpr std::uint64_t MOST = 1U << 20U;
        for (const std::string& dir : dirs) {
            IgnoreRules& rules = rules_[dir];
            rules = {};
            const std::string file = dir + "/" + IGNORE_FILE;
            if (HUTFile::isFile(file)) rules.add(HUTFileUtils::readWhole(file, MOST), file, true);
            for (const std::string& pattern : patterns) rules.add(pattern, "--ignore", false);
        }
    }

    bool passes(const std::string& top, const HUTDirWalk::Entry& entry) override {
        return told(top, entry.path, entry.isDir).empty();
    }

    /// The pattern that ignores the path; empty when none does.
    std::string told(const std::string& top, const std::string& path, bool isDir) const {
        const auto rules = rules_.find(top);
        if (rules == rules_.end() || rules->second.empty()) return "";
        const auto* const rule = rules->second.ignoring(pathBelow(path, top), isDir);
        return rule != nullptr ? rule->told : "";
    }

  private:
    std::map<std::string, IgnoreRules> rules_;
};

PlatformList::PlatformList(const HSTVector<std::string>& dirs, const PlatformFilter& filter) {
    for (const std::string& dir : dirs) dirs_.push_back(HUTFile::getCanonicalName(dir));
    ignored_ = std::make_unique<Ignored>(dirs_, filter.ignored);
    HMAVPlatformMgr manager;
    {
        const HUTDirWalkFiltering filtering(*ignored_);
        manager.addPlatformsFromDirs(dirs_);
    }
    refusals_ = manager.getRefusals();
    HSTVector<HMAVPlatform*> platforms;
    manager.getAllPlatforms(platforms);
    leaveOutFaulty(platforms);
    choose(platforms, filter);
}

PlatformList::~PlatformList() = default;

void PlatformList::hide(const PlatformRow& row, const std::string& reason) {
    hidden_.push_back({row.file, reason});
}

/// Bad platforms are refused already; those without a whole document are as good as bad.
void PlatformList::leaveOutFaulty(HSTVector<HMAVPlatform*>& platforms) {
    std::erase_if(platforms, [&](const HMAVPlatform* platform) {
        if (platform->isBad()) return true;
        const std::string fault = partitionsFault(*platform);
        if (!fault.empty()) refusals_.push_back({platform->getPlatformFile(), fault, {}, false});
        return !fault.empty();
    });
}

void PlatformList::choose(HSTVector<HMAVPlatform*>& platforms, const PlatformFilter& filter) {
    std::erase_if(platforms, [&](const HMAVPlatform* platform) {
        const PlatformRow row = rowOf(*platform);
        const std::string reason = unmet(row, filter);
        if (!reason.empty()) hide(row, reason);
        return !reason.empty();
    });
    const Owners owners = ownersIn(platforms);
    HSTVector<HMAVPlatform*> latest =
        filter.latest ? HMAVPlatformUtils::filterOutOldPlatforms(platforms) : platforms;
    auto next = latest.begin();
    for (const HMAVPlatform* platform : platforms) {
        PlatformRow row = rowOf(*platform);
        if (next == latest.end() || *next != platform) {
            hide(row, "a later version of it is listed");
            continue;
        }
        ++next;
        const auto owner = owners.find(row.file);
        if (!platform->isQpfm() && owner != owners.end()) row.partOf = owner->second;
        if (row.partOf.empty() || filter.parts) {
            rows_.push_back(std::move(row));
        } else {
            hide(row, "it is part of '" + row.partOf + "'; --all lists it by itself");
        }
    }
}

PlatformList::Answer PlatformList::why(const std::string& file) const {
    const std::string path = HUTFile::getCanonicalName(file);
    const auto dir = std::find_if(dirs_.begin(), dirs_.end(),
                                  [&](const std::string& one) { return isBelow(path, one); });
    const std::string directory = dir != dirs_.end() ? *dir : "";
    const auto isIt = [&](const auto& one) { return one.file == path; };
    const auto row = std::find_if(rows_.begin(), rows_.end(), isIt);
    if (row != rows_.end()) {
        return {
            file, "found",
            row->partOf.empty() ? "it is listed" : "it is listed as part of '" + row->partOf + "'",
            directory};
    }
    const auto refusal = std::find_if(refusals_.begin(), refusals_.end(), isIt);
    if (refusal != refusals_.end()) return {file, "refused", refusal->reason, directory};
    const auto hidden = std::find_if(hidden_.begin(), hidden_.end(), isIt);
    if (hidden != hidden_.end()) return {file, "hidden", hidden->reason, directory};
    if (!HUTFile::exists(path)) return {file, "absent", "nothing is there", directory};
    if (directory.empty())
        return {file, "outside", "no directory that is searched holds it", directory};
    return {file, "hidden", whyUnlisted(path, directory), directory};
}

std::string PlatformList::whyUnlisted(const std::string& file, const std::string& directory) const {
    const std::string pattern = ignored_->told(directory, file, HUTFile::isDir(file));
    if (!pattern.empty()) return "it is ignored by the pattern " + pattern;
    if (HUTFile::isDir(file)) return "it is a directory, no platform";
    const std::string extension = HUTPathUtils::extension(file);
    const std::string stem = file.substr(0, file.size() - extension.size());
    if (extension == ".qpfm") {
        const std::string_view below = pathBelow(file, directory);
        const auto depth = static_cast<std::size_t>(std::count(below.begin(), below.end(), '/'));
        if (depth > DEEPEST_DESCRIPTION)
            return "it lies " + std::to_string(depth) +
                   " levels below the directory, and descriptions are found three levels deep";
    } else if (!HMAVHardwarePlatform::isValidPlatformExt(extension)) {
        return "its extension is '" + extension + "', and .qpfm, .pka and .dsa are searched for";
    } else if (HUTFile::exists(stem + ".qpfm")) {
        return "the description '" + stem + ".qpfm' stands for it";
    }
    return "the search of the directory did not come to it";
}

JSONValue PlatformList::answer(const Answer* why) const {
    JSONValue platforms = JSONValue::list();
    for (const PlatformRow& row : rows_) platforms.add(jsonOf(row));
    JSONValue refused = JSONValue::list();
    for (const HMAVPlatformMgr::Refusal& refusal : refusals_) refused.add(jsonOf(refusal));
    return JSONValue::answer("list")
        .add("platforms", std::move(platforms))
        .add("refused", std::move(refused))
        .add("hidden", hidden())
        .add("why", jsonOf(why));
}

}  // namespace mav_platform
