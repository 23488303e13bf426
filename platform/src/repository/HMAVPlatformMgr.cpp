// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVPlatformMgr.h"

#include <boost/algorithm/string/predicate.hpp>
#include <map>
#include <set>
#include <utility>

#include "mav_host/HEXError.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Letters.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVHardwarePlatformParser.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformXMLReader.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "repository/searchDirs.h"

namespace messages = mav_host::messages;
using mav_host::equalLetters;
using mav_host::report;

namespace {

using Dirs = HSTVector<std::string>;

constexpr std::size_t DEEPEST_LEVEL = 3;
constexpr const char* LEFT_OUT = ". Unable to load platform.\n";

Dirs canonical(const Dirs& dirs) {
    Dirs result;
    result.reserve(dirs.size());
    for (const std::string& dir : dirs) result.push_back(HUTFile::getCanonicalName(dir));
    return result;
}

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

void deleteAll(HSTVector<HMAVPlatform*>& platforms) {
    for (const HMAVPlatform* platform : platforms) delete platform;
    platforms.clear();
}

/// That of each partition, else the platform's own.
HSTVector<const HMAVHardwarePlatform*> allHardware(const HMAVPlatform& platform) {
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform.getReconfigurablePartitions(partitions);
    if (partitions.empty()) return {platform.getHardwarePlatform()};
    HSTVector<const HMAVHardwarePlatform*> hardware;
    for (const auto* partition : partitions) hardware.push_back(partition->getHardwarePlatform());
    return hardware;
}

struct ClearedAtEnd {
    HMAVHardwarePlatformParser::Parsed& parsed;
    ~ClearedAtEnd() { parsed.clear(); }
};

/// Containers of a scan; deletes those that nobody took.
struct Found {
    Found() = default;
    ~Found() {
        for (const auto& [path, platform] : containers) delete platform;
    }
    Found(const Found&) = delete;
    Found& operator=(const Found&) = delete;

    std::unique_ptr<HMAVPlatform> take(const std::string& path) {
        const auto found = containers.find(path);
        if (found == containers.end()) return nullptr;
        std::unique_ptr<HMAVPlatform> taken(found->second);
        containers.erase(found);
        return taken;
    }

    HMAVHardwarePlatformParser::Containers containers;
};

}  // namespace

HMAVPlatformMgr* HMAVPlatformMgr::mp_theGlobal = nullptr;

HMAVPlatformMgr::HMAVPlatformMgr() : boardDataMgr_(HBOBoardCDataManager::create()) {}

HMAVPlatformMgr::~HMAVPlatformMgr() {
    clearAllPlatforms();
    if (mp_theGlobal == this) mp_theGlobal = nullptr;
}

HMAVPlatformMgr* HMAVPlatformMgr::getGlobal() {
    if (mp_theGlobal == nullptr) getGlobalNoInit()->init_();
    return mp_theGlobal;
}

HMAVPlatformMgr* HMAVPlatformMgr::getGlobalNoInit() {
    if (mp_theGlobal == nullptr) mp_theGlobal = new HMAVPlatformMgr;
    return mp_theGlobal;
}

void HMAVPlatformMgr::init_() {
    Dirs dirs;
    getDefaultMavPlatformDirs(dirs);
    if (!dirs.empty()) addPlatformsFromDirs(dirs);
}

void HMAVPlatformMgr::getDefaultMavPlatformDirs(Dirs& out) {
    Dirs dirs = mav_platform::applicationPlatformDirs();
    dirs.push_back(mav_platform::systemPlatformDir());
    for (std::string& dir : dirs) {
        if (HUTFile::exists(dir)) out.push_back(std::move(dir));
    }
}

bool HMAVPlatformMgr::addPlatformsFromDirs(const Dirs& dirs) {
    return addPlatformsFromDirs("", dirs);
}

bool HMAVPlatformMgr::addPlatformsFromDirs(const std::string& name, const Dirs& dirs) {
    // Descriptions and bare archives are two walks over the same directories.
    const HUTDirMemory memory;
    const Dirs full = canonical(dirs);
    const ClearedAtEnd cleared{parsed_};
    addPlatformsFromDirs_(name, full);
    addHardwarePlatformsFromDirs_(full);
    dropSettled_();
    return !platforms_.empty() || !dsaPlatforms_.empty();
}

HMAVPlatformMgr::Files HMAVPlatformMgr::heldFiles_() const {
    Files files;
    files.reserve(platforms_.size() + dsaPlatforms_.size());
    for (const HMAVPlatform* platform : platforms_) files.insert(platform->getPlatformFile());
    for (const HMAVPlatform* platform : dsaPlatforms_) files.insert(platform->getPlatformFile());
    return files;
}

bool HMAVPlatformMgr::addPlatformsFromDirs_(const std::string& name, const Dirs& dirs) {
    Files held = heldFiles_();
    std::vector<std::unique_ptr<HMAVPlatform>> added;
    const auto visit = [&](const HUTDirWalk::Entry& entry) {
        if (entry.isDir || HUTPathUtils::extension(entry.path) != ".qpfm") return true;
        // A stem is a word of the user, so it is compared by the tool's locale.
        const bool wanted = !name.empty() && boost::iequals(name, HUTPathUtils::stem(entry.path));
        if (held.contains(entry.path)) return !wanted;
        if (!name.empty() && !wanted) return true;
        if (auto platform = loadDescription_(entry.path)) {
            held.insert(entry.path);
            added.push_back(std::move(platform));
            return !wanted;
        }
        return true;
    };
    for (const std::string& dir : dirs) {
        if (!HUTFile::isDir(dir)) continue;
        try {
            if (!HUTDirWalk::walk(dir, {.followLinks = true, .maxDepth = DEEPEST_LEVEL}, visit)) {
                break;
            }
            settle_(dir);
        } catch (const std::exception& error) {
            report(messages::SEARCH_ENDED_EARLY, dir);
            refuseDir_(dir, error.what());
        }
    }
    // One insertion for all: the last one found stands first, without moving the list for each.
    const std::size_t count = added.size();
    platforms_.insert(platforms_.begin(), count, nullptr);
    for (std::size_t i = 0; i < count; ++i) platforms_[count - 1 - i] = added[i].release();
    return count > 0;
}

std::unique_ptr<HMAVPlatform> HMAVPlatformMgr::loadDescription_(const std::string& path) {
    faulty_.clear();
    reasons_.clear();
    auto platform = std::make_unique<HMAVPlatform>();
    platform->setQpfm(true);
    const bool loaded = parseDescription_(path, platform.get()) &&
                        attachHardwarePlatforms_(platform.get()) &&
                        attachSoftwarePlatforms_(platform.get());
    if (!loaded) {
        refuse_(refusalOf_(path));
        return nullptr;
    }
    judge_(*platform);
    return platform;
}

HMAVPlatformMgr::Refusal HMAVPlatformMgr::refusalOf_(const std::string& path) {
    std::string reason;
    for (const std::string& line : reasons_) {
        if (!reason.empty() && reason.back() != '\n') reason += '\n';
        reason += line;
    }
    while (reason.ends_with('\n')) reason.pop_back();
    return {path, reason, std::move(faulty_), false};
}

void HMAVPlatformMgr::fail_(const std::string& text, const std::string& reason) {
    parsingErrorMsgs_.push_back(text);
    reasons_.push_back(reason);
}

void HMAVPlatformMgr::refuse_(Refusal refusal) {
    const auto [known, isNew] = refusalOfFile_.emplace(refusal.file, refusals_.size());
    if (isNew) refusals_.emplace_back();
    refusals_[known->second] = std::move(refusal);
}

void HMAVPlatformMgr::refuseDir_(const std::string& dir, const std::string& reason) {
    refuse_({dir, reason, {}, true});
}

/// Leaves a gap in the list until the search ends.
void HMAVPlatformMgr::settle_(const std::string& file) {
    const auto known = refusalOfFile_.find(file);
    if (known == refusalOfFile_.end()) return;
    refusals_[known->second].file.clear();
    refusalOfFile_.erase(known);
}

void HMAVPlatformMgr::dropSettled_() {
    std::erase_if(refusals_, [](const Refusal& refusal) { return refusal.file.empty(); });
    for (std::size_t i = 0; i < refusals_.size(); ++i) refusalOfFile_[refusals_[i].file] = i;
}

void HMAVPlatformMgr::judge_(const HMAVPlatform& platform) {
    if (!platform.isBad()) return settle_(platform.getPlatformFile());
    Refusal refusal{platform.getPlatformFile(), platform.getBadReason(), {}, false};
    for (const HMAVHardwarePlatform* hardware : allHardware(platform)) {
        if (hardware == nullptr || hardware->isMetadataRead()) continue;
        refusal.faulty.push_back(hardware->getPlatformFile());
    }
    refuse_(std::move(refusal));
}

bool HMAVPlatformMgr::parseDescription_(const std::string& path, HMAVPlatform* platform) {
    try {
        HMAVPlatformXMLReader reader(path, platform);
        if (reader.parseFile()) return true;
        if (!reader.getErrorMsg().empty()) fail_(reader.getErrorMsg(), reader.getReason());
    } catch (const HEXFileNotFoundException& error) {
        // It vanished after the walk had seen it; the others are still there.
        fail_(error.what());
    }
    report(messages::DESCRIPTION_LEFT_OUT, path);
    fail_("Encountered Errors while parsing platform: " + path + LEFT_OUT);
    return false;
}

bool HMAVPlatformMgr::attachHardwarePlatforms_(HMAVPlatform* platform) {
    if (platform == nullptr) return false;
    if (!platform->hasReconfigurablePartitions()) return attachSingleHardwarePlatform_(platform);
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform->getReconfigurablePartitions(partitions);
    bool attached = true;
    for (HMAVReconfigurablePartition* partition : partitions) {
        attached = attachReconfigurablePartition_(partition, platform) && attached;
    }
    return attached;
}

bool HMAVPlatformMgr::attachSingleHardwarePlatform_(HMAVPlatform* platform) {
    HMAVHardwarePlatform* const hardware =
        parseHardwarePlatform_(platform->getHardwarePlatformFile(), platform);
    if (hardware == nullptr) return false;
    platform->setHardwarePlatform(hardware);
    return true;
}

bool HMAVPlatformMgr::attachReconfigurablePartition_(HMAVReconfigurablePartition* partition,
                                                     HMAVPlatform* platform) {
    HMAVHardwarePlatform* const hardware =
        parseHardwarePlatform_(partition->getHardwarePlatformFile(), platform);
    if (hardware == nullptr) return false;
    partition->setHardwarePlatform(hardware);
    if (platform->getDefaultRPId() == partition->getID()) {
        platform->setDefaultRPHardwarePlatform(hardware);
    }
    return true;
}

HMAVHardwarePlatform* HMAVPlatformMgr::parseHardwarePlatform_(const std::string& hardwareFile,
                                                              HMAVPlatform* platform) {
    if (!HUTFile::exists(hardwareFile)) {
        handleInvalidPath_(hardwareFile, platform->getPlatformFile());
        return nullptr;
    }
    if (!HMAVHardwarePlatform::isValidPlatformExt(HUTPathUtils::extension(hardwareFile))) {
        handleInvalidExtension_(hardwareFile, platform->getPlatformFile());
        return nullptr;
    }
    return HMAVHardwarePlatformParser::addPlatform(hardwareFile, platform, parsed_);
}

void HMAVPlatformMgr::handleInvalidPath_(const std::string& hardwareFile,
                                         const std::string& platformFile) {
    faulty_.push_back(hardwareFile);
    report(messages::HARDWARE_FILE_MISSING, hardwareFile, platformFile);
    fail_("Hardware platform file " + hardwareFile + " for platform " + platformFile +
          " does not exist on disk" + LEFT_OUT);
}

void HMAVPlatformMgr::handleInvalidExtension_(const std::string& hardwareFile,
                                              const std::string& platformFile) {
    std::string list;
    for (const std::string& extension : HMAVHardwarePlatform::getValidPlatformExts()) {
        list += " '" + extension + "',";
    }
    list.pop_back();
    faulty_.push_back(hardwareFile);
    report(messages::HARDWARE_EXTENSION, hardwareFile, platformFile, list);
    fail_("Found bad hardware platform file " + hardwareFile + " for platform " + platformFile +
          ". Supported extensions are" + list + LEFT_OUT);
}

bool HMAVPlatformMgr::attachSoftwarePlatforms_(HMAVPlatform* platform) {
    const std::string file = platform->getSoftwarePlatformFile();
    if (file.empty()) return true;
    const std::string platformFile = platform->getPlatformFile();
    faulty_.push_back(file);
    if (!HUTFile::exists(file)) {
        fail_("Software platform file " + file + " for platform " + platformFile +
              " does not exist on disk" + LEFT_OUT);
        return false;
    }
    const std::shared_ptr<HMAVSoftwarePlatform> software =
        platform->createMutableSoftwarePlatform();
    platform->addSoftwarePlatform(software.get());
    HMAVSoftwarePlatformXMLReader reader(file, software);
    if (reader.parseFile()) return true;
    report(messages::SOFTWARE_LEFT_OUT, platformFile);
    if (!reader.getErrorMsg().empty()) fail_(reader.getErrorMsg());
    fail_("Encountered Errors while parsing software platform for: " + platformFile + LEFT_OUT);
    return false;
}

bool HMAVPlatformMgr::addHardwarePlatformsFromDirs_(const Dirs& dirs) {
    Found found;
    HSTVector<HMAVHardwarePlatform*> list;
    searchBareArchives_(dirs, list, found.containers, false);
    if (list.empty()) return !dsaPlatforms_.empty();
    Files held = heldFiles_();
    HSTVector<std::string> files;
    // The paths first: a duplicate in the list dies with the container of its path.
    for (const HMAVHardwarePlatform* hardware : list) files.push_back(hardware->getPlatformFile());
    for (const std::string& file : files) {
        std::unique_ptr<HMAVPlatform> platform = found.take(file);
        if (platform == nullptr || !held.insert(file).second) continue;
        judge_(*platform);
        dsaPlatforms_.push_back(nullptr);
        dsaPlatforms_.back() = platform.release();
    }
    return !dsaPlatforms_.empty();
}

void HMAVPlatformMgr::getHardwarePlatformsFromDirs(const Dirs& dirs,
                                                   HSTVector<HMAVHardwarePlatform*>& out,
                                                   bool filterByVbnv) {
    const HUTDirMemory memory;
    const Dirs full = canonical(dirs);
    for (const std::string& dir : full) {
        if (HUTFile::isDir(dir)) settle_(dir);
    }
    std::set<std::string> known;
    for (const auto& [file, platform] : handoffs_) known.insert(file);
    searchBareArchives_(full, out, handoffs_, filterByVbnv);
    std::map<std::string, const HMAVPlatform*> bad;
    for (const auto& [file, platform] : handoffs_) {
        if (!platform->isBad() && !known.contains(file)) settle_(file);
        if (platform->isBad() && !refusalOfFile_.contains(file)) bad.emplace(file, platform);
    }
    for (const auto& [file, platform] : bad) judge_(*platform);
    dropSettled_();
}

void HMAVPlatformMgr::searchBareArchives_(
    const Dirs& dirs, HSTVector<HMAVHardwarePlatform*>& out,
    std::unordered_map<std::string, HMAVPlatform*>& containers, bool filterByVbnv) {
    HSTVector<HMAVHardwarePlatformParser::Unsearched> unsearched;
    HMAVHardwarePlatformParser::loadBareHardwarePlatforms(dirs, out, containers, filterByVbnv,
                                                          unsearched, parsed_);
    for (const auto& [dir, reason] : unsearched) refuseDir_(dir, reason);
}

void HMAVPlatformMgr::removePlatformsFromDirs(const Dirs& dirs) {
    const Dirs full = canonical(dirs);
    const std::set<std::string> parents(full.begin(), full.end());
    const auto removed = [&](const HMAVPlatform* platform) {
        const std::string file = platform->getPlatformFile();
        const bool gone = !file.empty() && parents.contains(HUTFile::getParent(file));
        if (gone) delete platform;
        return gone;
    };
    std::erase_if(platforms_, removed);
    std::erase_if(dsaPlatforms_, removed);
}

void HMAVPlatformMgr::removeHardwareHandoffFromDirs(const Dirs& dirs,
                                                    HSTVector<HMAVHardwarePlatform*>& hardware) {
    removePlatformsFromDirs(dirs);
    std::set<std::string> keys;
    std::unordered_set<const HMAVHardwarePlatform*> taken;
    for (const std::string& dir : canonical(dirs)) {
        if (dir.empty()) continue;
        const std::string below = dir.ends_with('/') ? dir : dir + "/";
        for (const auto& [key, platform] : handoffs_) {
            const bool isBelow =
                key.size() > below.size() && key.starts_with(below) && key[below.size()] != '.';
            if (!isBelow || platform == nullptr || platform->getHardwarePlatform() == nullptr) {
                continue;
            }
            taken.insert(platform->getHardwarePlatform());
            keys.insert(key);
        }
    }
    std::erase_if(hardware, [&](const auto* one) { return taken.contains(one); });
    for (const std::string& key : keys) {
        const auto entry = handoffs_.find(key);
        delete entry->second;
        handoffs_.erase(entry);
    }
}

void HMAVPlatformMgr::clearAllPlatforms() {
    for (const auto& [key, platform] : handoffs_) delete platform;
    handoffs_.clear();
    deleteAll(platforms_);
    deleteAll(dsaPlatforms_);
}

HMAVPlatform* HMAVPlatformMgr::getPlatform(const std::string& name) const {
    const std::string path = HUTFile::getCanonicalName(name);
    for (HMAVPlatform* platform : *activePlatforms_) {
        if (platform->getUniqueName() == name) return platform;
        if (equalLetters(platform->getPlatformBaseName(), name)) return platform;
        // A canonical path keeps the file's name, so only equal names are worth asking the disk.
        const std::string file = platform->getPlatformFile();
        if (equalLetters(fileName(file), fileName(path)) &&
            equalLetters(HUTFile::getCanonicalName(file), path)) {
            return platform;
        }
    }
    return nullptr;
}

HSTFwdIter<HMAVPlatform*>* HMAVPlatformMgr::createPlatformIter() const {
    return new HSTVectorIter<HMAVPlatform*>(*activePlatforms_);
}

void HMAVPlatformMgr::getPlatforms(Platforms& out) const {
    out.insert(out.end(), activePlatforms_->begin(), activePlatforms_->end());
}

void HMAVPlatformMgr::getAllPlatforms(Platforms& out) const {
    out.insert(out.end(), platforms_.begin(), platforms_.end());
    out.insert(out.end(), dsaPlatforms_.begin(), dsaPlatforms_.end());
}

void HMAVPlatformMgr::getUnifiedPlatforms(Platforms& out) const {
    for (HMAVPlatform* platform : *activePlatforms_) {
        if (platform->isUnified()) out.push_back(platform);
    }
}

void HMAVPlatformMgr::getMAVPlatforms(Platforms& out) const {
    getUnifiedPlatforms(out);
}

void HMAVPlatformMgr::getDSAPlatforms(Platforms& out) const {
    out = dsaPlatforms_;
}

std::size_t HMAVPlatformMgr::getNumPlatforms() const {
    return activePlatforms_->size();
}

void HMAVPlatformMgr::getParsingErrorMsgs(HSTVector<std::string>& out) const {
    out.insert(out.end(), parsingErrorMsgs_.begin(), parsingErrorMsgs_.end());
}

void HMAVPlatformMgr::clearParsingErrorMsgs() {
    parsingErrorMsgs_.clear();
    refusals_.clear();
    refusalOfFile_.clear();
}

void HMAVPlatformMgr::setProjectType(MAVProjectType type) {
    projectType_ = type;
    activePlatforms_ = type == MAVProjectType::PLATFORM ? &dsaPlatforms_ : &platforms_;
}

std::string HMAVPlatformMgr::getProjectTypeAsStr() const {
    if (projectType_ == MAVProjectType::MAV) return "mav";
    return projectType_ == MAVProjectType::PLATFORM ? "platform" : "";
}

void HMAVPlatformMgr::setBoardRepoPaths(const HSTVector<std::string>& paths) {
    boardRepoPaths_ = paths;
    bool changed = false;
    boardDataMgr_->setBoardPartRepoPaths(boardRepoPaths_, changed);
}
