// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHardwarePlatformParser.h"

#include <map>
#include <memory>
#include <set>

#include "archive/OpenArchives.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HMAVDsaXmlReader.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"

namespace {

/// Passes on all that is told, and knows whether there was anything.
class Listener final : public mav_host::ReportScope {
  public:
    ~Listener() override { close(); }
    bool heardNothing() {
        flush();
        return !heard_;
    }

  private:
    void onReport(const ComMsg& message) override {
        heard_ = true;
        ComMsgMgr::sendMsg(message.level, message.group, message.mask, message.id, message.args);
    }
    void onLines(const std::string& text) override {
        heard_ = true;
        mav_host::console() << text << std::flush;
    }
    bool heard_ = false;
};

/// True for a platform that reads nothing on the first question: what it would report is reported
/// once for each owner.
bool isReadWhole(const HPLPlatform& hardware) {
    if (hardware.hasFile(HMAVPfmFileTypes::DPEPRJ)) return false;
    // Nothing is left that a question would note down: the owners may ask in different threads.
    hardware.initDpePartitions();
    hardware.isMemoryResourceIndexed();
    return true;
}

/// A description of the archive's name stands beside the archive.
bool isDescribed(const std::string& path, const std::string& extension) {
    std::string description(path, 0, path.size() - extension.size());
    description += ".qpfm";
    return HUTFile::exists(description) && !HUTFile::isDir(description);
}

/// Adds a line to the reason; that of a description names the archive.
void markBad(HMAVPlatform& platform, const std::string& file, const std::string& fault) {
    std::string reason = platform.getBadReason();
    if (!reason.empty()) reason += "\n";
    if (platform.isQpfm()) reason += HUTFile::getCanonicalName(file) + ": ";
    platform.setBadReason(reason + fault);
    platform.setBad(true);
}

}  // namespace

void HMAVHardwarePlatformParser::loadBareHardwarePlatforms(
    const HSTVector<std::string>& directories, Platforms& platforms, Containers& seen,
    bool filterByVbnv) {
    HSTVector<Unsearched> unsearched;
    loadBareHardwarePlatforms(directories, platforms, seen, filterByVbnv, unsearched);
}

void HMAVHardwarePlatformParser::loadBareHardwarePlatforms(
    const HSTVector<std::string>& directories, Platforms& platforms, Containers& seen,
    bool filterByVbnv, HSTVector<Unsearched>& unsearched) {
    loadBareHardwarePlatforms(directories, platforms, seen, filterByVbnv, unsearched, {});
}

void HMAVHardwarePlatformParser::loadBareHardwarePlatforms(
    const HSTVector<std::string>& directories, Platforms& platforms, Containers& seen,
    bool filterByVbnv, HSTVector<Unsearched>& unsearched, const Parsed& parsed) {
    Platforms found;
    for (const std::string& dir : directories) {
        if (HUTFile::isDir(dir)) parseBareDSAFiles_(dir, found, seen, unsearched, parsed);
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
    return platform != nullptr ? parseDSAFile_(file, platform).get() : nullptr;
}

HMAVHardwarePlatform* HMAVHardwarePlatformParser::addPlatform(const std::string& file,
                                                              HMAVPlatform* platform,
                                                              Parsed& parsed) {
    if (platform == nullptr) return nullptr;
    Listener listener;
    const std::shared_ptr<HPLPlatform> hardware = parseDSAFile_(file, platform);
    if (hardware->isMetadataRead() && listener.heardNothing() && isReadWhole(*hardware)) {
        parsed.emplace(hardware->getPlatformFile(), hardware);
    }
    return hardware.get();
}

std::shared_ptr<HPLPlatform> HMAVHardwarePlatformParser::parseDSAFile_(const std::string& file,
                                                                       HMAVPlatform* platform) {
    using Mode = HMAVDsaJsonReader::Mode;
    mav_platform::OpenArchives archives;
    std::shared_ptr<HPLPlatform> first = platform->createMutableHardwarePlatform();
    HMAVDsaJsonReader reader(first.get(), &archives);
    std::string member;
    if (reader.canParse(file, Mode::HW_METADATA_AUTO, member)) {
        // What is wrong with the member has been reported; of another kind the archive is not.
        if (!reader.parseMember(file, member)) markBad(*platform, file, reader.getErrorMsg());
        return first;
    }
    if (!HUTFile::exists(file)) {
        markBad(*platform, file, "the file does not exist");
        return first;
    }
    std::shared_ptr<HPLPlatform> second = platform->createMutableHardwarePlatform();
    HMAVDsaXmlReader xmlReader(file, second.get(), &archives);
    if (!xmlReader.parseDSA()) {
        markBad(*platform, file, xmlReader.getErrorMsg());
        return first;
    }
    second->setPlatformFile(HUTFile::getCanonicalName(file));
    return second;
}

bool HMAVHardwarePlatformParser::parseBareDSAFiles_(const std::string& dir, Platforms& found,
                                                    Containers& seen,
                                                    HSTVector<Unsearched>& unsearched,
                                                    const Parsed& parsed) {
    if (!HUTFile::exists(dir)) {
        mav_host::report(mav_host::messages::NO_SUCH_DIRECTORY, dir);
        return false;
    }
    try {
        return HUTDirWalk::walk(dir, {}, [&](const HUTDirWalk::Entry& entry) {
            const std::string extension = HUTPathUtils::extension(entry.path);
            if (HMAVHardwarePlatform::isValidPlatformExt(extension) &&
                !isDescribed(entry.path, extension)) {
                parseBareDSAFile_(entry.path, found, seen, parsed);
            }
            return true;
        });
    } catch (const std::exception& error) {
        mav_host::report(mav_host::messages::SEARCH_ENDED_EARLY, dir);
        unsearched.push_back({dir, error.what()});
        return false;
    }
}

void HMAVHardwarePlatformParser::parseBareDSAFile_(const std::string& path, Platforms& found,
                                                   Containers& seen, const Parsed& parsed) {
    const std::string file = HUTFile::getCanonicalName(path);
    auto recorded = seen.find(file);
    if (recorded == seen.end()) {
        auto container = std::make_unique<HMAVPlatform>();
        const auto shared = parsed.find(file);
        if (shared != parsed.end()) container->shareHardwarePlatform(shared->second);
        const std::shared_ptr<HPLPlatform> hardware =
            shared != parsed.end() ? shared->second : parseDSAFile_(path, container.get());
        // What leads nowhere was never opened.
        if (hardware->getPlatformFile().empty()) hardware->setPlatformFile(file);
        container->setHardwarePlatform(hardware.get());
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
    std::map<std::string, std::string> fileByVbnv;
    std::set<std::string> files;
    for (HMAVHardwarePlatform* candidate : candidates) {
        const std::string file = candidate->getPlatformFile();
        if (files.contains(file)) {
            mav_host::report(mav_host::messages::ARCHIVE_FOUND_TWICE, file);
            continue;
        }
        const std::string vbnv = candidate->getVBNV();
        const auto [kept, isNew] = fileByVbnv.emplace(vbnv, file);
        if (!isNew) {
            mav_host::report(mav_host::messages::SAME_VBNV, vbnv, file, kept->second);
            continue;
        }
        files.insert(file);
        accepted.push_back(candidate);
    }
}

void HMAVHardwarePlatformParser::addPlatforms_(const Platforms& additions, Platforms& platforms) {
    // Each addition takes one older platform of its name away, the first that is left.
    std::map<std::string, std::size_t> replaced;
    for (const HMAVHardwarePlatform* addition : additions) ++replaced[addition->getUniqueName()];
    std::erase_if(platforms, [&](const HMAVHardwarePlatform* older) {
        const auto found = replaced.find(older->getUniqueName());
        if (found == replaced.end() || found->second == 0) return false;
        --found->second;
        return true;
    });
    platforms.insert(platforms.end(), additions.begin(), additions.end());
}
