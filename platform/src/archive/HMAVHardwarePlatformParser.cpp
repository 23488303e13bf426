// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwarePlatformParser.h"

#include <memory>
#include <unordered_set>

#include "archive/OpenArchives.h"
#include "formats/metadata/HMAVDsaJsonReader.h"
#include "formats/metadata/HMAVDsaXmlReader.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatform.h"

namespace {

/// A description of the archive's name stands beside the archive.
bool isDescribed(const std::string& path, const std::string& extension) {
    std::string description(path, 0, path.size() - extension.size());
    description += ".qpfm";
    return HUTFile::exists(description) && !HUTFile::isDir(description);
}

}  // namespace

void HMAVHardwarePlatformParser::loadBareHardwarePlatforms(
    const HSTVector<std::string>& directories, Platforms& platforms, Containers& seen,
    bool filterByVbnv) {
    Platforms found;
    for (const std::string& dir : directories) {
        if (HUTFile::isDir(dir)) parseBareDSAFiles_(dir, found, seen);
    }
    if (!filterByVbnv) {
        addPlatforms_(found, platforms);
        return;
    }
    Platforms accepted;
    filterByVBNV_(found, accepted);
    addPlatforms_(accepted, platforms);
}

HMAVHardwarePlatform* HMAVHardwarePlatformParser::addPlatform(const std::string& file,
                                                              HMAVPlatform* platform) {
    return platform != nullptr ? parseDSAFile_(file, platform) : nullptr;
}

HMAVHardwarePlatform* HMAVHardwarePlatformParser::parseDSAFile_(const std::string& file,
                                                                HMAVPlatform* platform) {
    using Mode = HMAVDsaJsonReader::Mode;
    mav_platform::OpenArchives archives;
    const std::shared_ptr<HPLPlatform> first = platform->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(first.get(), &archives);
    std::string member;
    if (reader.canParse(file, Mode::HW_METADATA_AUTO, member)) {
        // What is wrong with the member has been reported; of another kind the archive is not.
        reader.parseMember(file, member);
        return first.get();
    }
    if (!HUTFile::exists(file)) return first.get();
    const std::shared_ptr<HPLPlatform> second = platform->createMutableHardwarePlatform();
    if (!HMAVDsaXmlReader(file, second.get(), &archives).parseDSA()) return first.get();
    second->setPlatformFile(HUTFile::getCanonicalName(file));
    return second.get();
}

bool HMAVHardwarePlatformParser::parseBareDSAFiles_(const std::string& dir, Platforms& found,
                                                    Containers& seen) {
    if (!HUTFile::exists(dir)) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::WARNING, "@74-1@%s", {dir});
        return false;
    }
    try {
        return HUTDirWalk::walk(dir, {}, [&](const HUTDirWalk::Entry& entry) {
            const std::string extension = HUTPathUtils::extension(entry.path);
            if (HMAVHardwarePlatform::isValidPlatformExt(extension) &&
                !isDescribed(entry.path, extension)) {
                parseBareDSAFile_(entry.path, found, seen);
            }
            return true;
        });
    } catch (const std::exception&) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::WARNING, "@74-5@%s", {dir});
        return false;
    }
}

void HMAVHardwarePlatformParser::parseBareDSAFile_(const std::string& path, Platforms& found,
                                                   Containers& seen) {
    const std::string file = HUTFile::getCanonicalName(path);
    auto recorded = seen.find(file);
    if (recorded == seen.end()) {
        auto container = std::make_unique<HMAVPlatform>();
        HMAVHardwarePlatform* const hardware = parseDSAFile_(path, container.get());
        container->setHardwarePlatform(hardware);
        container->setPartial(true);
        container->setPlatformFile(hardware->getPlatformFile());
        recorded = seen.emplace(file, container.get()).first;
        static_cast<void>(container.release());
    }
    if (HMAVHardwarePlatform* const hardware = recorded->second->getHardwarePlatform()) {
        found.push_back(hardware);
    }
}

void HMAVHardwarePlatformParser::filterByVBNV_(const Platforms& candidates, Platforms& accepted) {
    std::unordered_map<std::string, std::string> fileByVbnv;
    std::unordered_set<std::string> files;
    for (HMAVHardwarePlatform* candidate : candidates) {
        const std::string file = candidate->getPlatformFile();
        if (files.contains(file)) {
            ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::WARNING, "@74-23@%s", {file});
            continue;
        }
        const std::string vbnv = candidate->getVBNV();
        const auto [kept, isNew] = fileByVbnv.emplace(vbnv, file);
        if (!isNew) {
            ComMsgMgr::sendMsg(3, "platform", ComMsgMgr::WARNING, "@74-17@%s%s%s",
                               {vbnv, file, kept->second});
            continue;
        }
        files.insert(file);
        accepted.push_back(candidate);
    }
}

void HMAVHardwarePlatformParser::addPlatforms_(const Platforms& additions, Platforms& platforms) {
    // Each addition takes one older platform of its name away, the first that is left.
    std::unordered_map<std::string, std::size_t> replaced;
    for (const HMAVHardwarePlatform* addition : additions) ++replaced[addition->getUniqueName()];
    std::erase_if(platforms, [&](const HMAVHardwarePlatform* older) {
        const auto found = replaced.find(older->getUniqueName());
        if (found == replaced.end() || found->second == 0) return false;
        --found->second;
        return true;
    });
    platforms.insert(platforms.end(), additions.begin(), additions.end());
}
