// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVPlatformUtils.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <utility>

#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Letters.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "repository/hardwareOf.h"
#include "repository/searchDirs.h"

using mav_host::equalLetters;
using mav_host::upperCase;

namespace {

using Platforms = HMAVPlatformUtils::Platforms;
using Texts = HMAVPlatformUtils::Texts;

Platforms allPlatforms() {
    Platforms platforms;
    HMAVPlatformMgr::getGlobal()->getPlatforms(platforms);
    return platforms;
}

bool matches(const std::string& wanted, const std::string& text) {
    return wanted.empty() || wanted == text;
}

bool matchesAnyCase(const std::string& wanted, const std::string& text) {
    return wanted.empty() || equalLetters(wanted, text);
}

/// The first device with its part; null when the hardware describes none.
const HPLDevice::Part* firstPart(const HMAVHardwarePlatform* hardware) {
    HSTVector<HMAVDevice*> devices;
    if (hardware != nullptr) hardware->getDevices(devices);
    const auto* const device =
        devices.empty() ? nullptr : dynamic_cast<const HPLDevice*>(devices.front());
    return device != nullptr ? &device->getPart() : nullptr;
}

bool hasCategory(const HMAVHardwarePlatform* hardware, const std::string& category) {
    if (category.empty()) return true;
    Texts categories;
    if (hardware != nullptr) hardware->getTargetCategories(categories);
    return std::find(categories.begin(), categories.end(), category) != categories.end();
}

bool hasFamily(const HMAVHardwarePlatform* hardware, const std::string& family) {
    if (family.empty()) return true;
    const HPLDevice::Part* const part = firstPart(hardware);
    return part != nullptr && equalLetters(part->getArchitecture(), family);
}

/// What a question asks of the hardware; empty texts ask nothing.
struct Wanted {
    std::string vbnv = {};
    std::string part = {};
    std::string category = {};
    std::string family = {};
    std::string vendor = {};
    std::string board = {};

    bool fits(const HMAVPlatform* platform) const {
        const HMAVHardwarePlatform* const hardware = mav_platform::hardwareOf(*platform);
        const auto text = [&](auto question) {
            return hardware != nullptr ? (hardware->*question)() : std::string();
        };
        return matches(vbnv, text(&HMAVHardwarePlatform::getVBNV)) &&
               matchesAnyCase(part, text(&HMAVHardwarePlatform::getFpgaPart)) &&
               matches(vendor, text(&HMAVHardwarePlatform::getVendor)) &&
               matches(board, text(&HMAVHardwarePlatform::getBoardId)) &&
               hasCategory(hardware, category) && hasFamily(hardware, family);
    }
};

template <class Predicate>
void append(Predicate fits, Platforms& out) {
    for (HMAVPlatform* platform : allPlatforms()) {
        if (fits(platform)) out.push_back(platform);
    }
}

template <class Predicate>
HMAVPlatform* findFirst(Predicate fits) {
    const Platforms platforms = allPlatforms();
    const auto found = std::find_if(platforms.begin(), platforms.end(), fits);
    return found != platforms.end() ? *found : nullptr;
}

void appendBoards(const Wanted& wanted, Texts& out) {
    std::set<std::string> known;
    for (const HMAVPlatform* platform : allPlatforms()) {
        const HMAVHardwarePlatform* const hardware = mav_platform::hardwareOf(*platform);
        if (hardware == nullptr || !wanted.fits(platform)) continue;
        const std::string board = hardware->getBoardId();
        if (!board.empty() && known.insert(board).second) out.push_back(board);
    }
}

const HMAVHardwarePlatform* hardwareOf(const std::string& name) {
    const HMAVPlatform* const platform = HMAVPlatformUtils::getPlatform(name);
    return platform != nullptr ? mav_platform::hardwareOf(*platform) : nullptr;
}

const HMAVSoftwarePlatform* softwareOf(const std::string& name) {
    const HMAVPlatform* const platform = HMAVPlatformUtils::getPlatform(name);
    return platform != nullptr ? platform->getSoftwarePlatform() : nullptr;
}

std::set<std::string> installDirs() {
    Texts dirs;
    HMAVPlatformUtils::getRootInstallPlatformDirs(dirs);
    return {dirs.begin(), dirs.end()};
}

/// Appends the directory of each platform that fits.
template <class Predicate>
void appendDirs(Predicate fits, Texts& out) {
    const std::set<std::string> install = installDirs();
    for (const HMAVPlatform* platform : allPlatforms()) {
        std::string dir = platform->getPlatformDir();
        if (fits(platform, install.contains(dir))) out.push_back(std::move(dir));
    }
}

}  // namespace

void HMAVPlatformUtils::getRootInstallPlatformDirs(Texts& out) {
    for (const std::string& dir : mav_platform::applicationPlatformDirs()) {
        out.push_back(HUTFile::getCanonicalName(dir));
    }
    out.push_back(mav_platform::systemPlatformDir());
}

bool HMAVPlatformUtils::isInstallPlatformDir(const std::string& dir) {
    return installDirs().contains(dir);
}

bool HMAVPlatformUtils::isUserPlatform(const std::string& name) {
    const HMAVPlatform* const platform = getPlatform(name);
    return platform != nullptr &&
           !isInstallPlatformDir(HUTFile::getParent(platform->getPlatformFile()));
}

void HMAVPlatformUtils::getAllFactoryPlatformDirs(Texts& out) {
    appendDirs([](const HMAVPlatform*, bool install) { return install; }, out);
}

void HMAVPlatformUtils::getAllUserPlatformDirs(Texts& out) {
    appendDirs([](const HMAVPlatform*, bool install) { return !install; }, out);
}

void HMAVPlatformUtils::getUnifiedPlatformDirs(Texts& out) {
    appendDirs([](const HMAVPlatform* platform,
                  bool install) { return !install && platform->isUnified(); },
               out);
}

std::string HMAVPlatformUtils::setUserPlatformDirs(const Texts& dirs) {
    HMAVPlatformMgr* const manager = HMAVPlatformMgr::getGlobal();
    if (manager == nullptr) return "Failed to get Platform Mgr";
    if (dirs.empty()) {
        Texts users;
        getAllUserPlatformDirs(users);
        manager->removePlatformsFromDirs(users);
        return "";
    }
    manager->clearParsingErrorMsgs();
    std::string text = manager->addPlatformsFromDirs(dirs) ? "" : "No Platforms Found.\n\n";
    Texts errors;
    manager->getParsingErrorMsgs(errors);
    for (const std::string& error : errors) text += error + "\n";
    return text;
}

Texts HMAVPlatformUtils::splitToFullDirs(const std::string& text) {
    return mav_platform::splitToDirs(text);
}

HMAVPlatform* HMAVPlatformUtils::getPlatform(const std::string& name) {
    return HMAVPlatformMgr::getGlobal()->getPlatform(name);
}

HMAVPlatform* HMAVPlatformUtils::getPlatformByQpfmFileBaseName(const std::string& baseName) {
    return findFirst([&](const HMAVPlatform* platform) {
        return matches(baseName, platform->getPlatformBaseName());
    });
}

HMAVPlatform* HMAVPlatformUtils::getPlatformByUniqueName(const std::string& name) {
    return findFirst(
        [&](const HMAVPlatform* platform) { return matches(name, platform->getUniqueName()); });
}

HMAVPlatform* HMAVPlatformUtils::getPlatformByFilePath(const std::string& path) {
    const bool shown = HUTEnv::getEnv("GET_PLATFORM_BY_PATH_DEBUG_VAR") != nullptr;
    const std::string wanted = HUTFile::getCanonicalName(path);
    return findFirst([&](const HMAVPlatform* platform) {
        const std::string file = HUTFile::getCanonicalName(platform->getPlatformFile());
        const bool same = !wanted.empty() && wanted == file;
        if (shown) {
            mav_host::console() << "sPlatFileCanonical is: " << file
                                << "\nsQpfmFileCanonical is: " << wanted << "\n"
                                << (same ? "Found a match\n" : "Does not match\n") << std::flush;
        }
        return same;
    });
}

void HMAVPlatformUtils::getPlatformsByUniqueName(const std::string& name, Platforms& out) {
    append([&](const HMAVPlatform* platform) { return matches(name, platform->getUniqueName()); },
           out);
}

void HMAVPlatformUtils::getPlatformsByVBNV(const std::string& vbnv, Platforms& out) {
    const Wanted wanted{.vbnv = vbnv};
    append([&](const HMAVPlatform* platform) { return wanted.fits(platform); }, out);
}

void HMAVPlatformUtils::getLatestPlatformsByVBNV(const std::string& vbnv, Platforms& out) {
    Platforms found;
    getPlatformsByVBNV(vbnv, found);
    const Platforms latest = filterOutOldPlatforms(found);
    out.insert(out.end(), latest.begin(), latest.end());
}

void HMAVPlatformUtils::getPlatformsByPart(const std::string& part, Platforms& out) {
    const Wanted wanted{.part = part};
    append([&](const HMAVPlatform* platform) { return wanted.fits(platform); }, out);
}

void HMAVPlatformUtils::getPlatformsByCategoryFamilyVendorAndBoard(const std::string& category,
                                                                   const std::string& family,
                                                                   const std::string& vendor,
                                                                   const std::string& board,
                                                                   Platforms& out) {
    const Wanted wanted{.category = category, .family = family, .vendor = vendor, .board = board};
    append([&](const HMAVPlatform* platform) { return wanted.fits(platform); }, out);
}

void HMAVPlatformUtils::getPlatformsByDesignIntent(const HMAVDesignIntentStorage& intent,
                                                   Platforms& out) {
    append(
        [&](const HMAVPlatform* platform) {
            const HMAVHardwarePlatform* const hardware = mav_platform::hardwareOf(*platform);
            const auto has = hardware ? hardware->getDesignIntent() : HMAVDesignIntentStorage();
            return (!intent.getDataCenter() || has.getDataCenter()) &&
                   (!intent.getEmbedded() || has.getEmbedded()) &&
                   (!intent.getExternalHost() || has.getExternalHost()) &&
                   (!intent.getServerManaged() || has.getServerManaged());
        },
        out);
}

std::string HMAVPlatformUtils::getDevice(const std::string& name) {
    const HMAVHardwarePlatform* const hardware = hardwareOf(name);
    return hardware != nullptr ? hardware->getFpgaDevice() : "";
}

std::string HMAVPlatformUtils::getFpgaPart(const std::string& name) {
    const HMAVHardwarePlatform* const hardware = hardwareOf(name);
    return hardware != nullptr ? hardware->getFpgaPart() : "";
}

const HPLDevice::Part* HMAVPlatformUtils::getFpgaPartAsFields(const std::string& name) {
    return firstPart(hardwareOf(name));
}

void HMAVPlatformUtils::getSupportedFpgaParts(Texts& out) {
    std::set<std::string> known;
    for (const HMAVPlatform* platform : allPlatforms()) {
        const HMAVHardwarePlatform* const hardware = mav_platform::hardwareOf(*platform);
        std::string part = hardware != nullptr ? hardware->getFpgaPart() : "";
        if (!part.empty() && known.insert(upperCase(part)).second) {
            out.push_back(std::move(part));
        }
    }
}

void HMAVPlatformUtils::getBoardsByCategoryFamilyAndVendor(const std::string& category,
                                                           const std::string& family,
                                                           const std::string& vendor, Texts& out) {
    appendBoards({.category = category, .family = family, .vendor = vendor}, out);
}

void HMAVPlatformUtils::getBoardsByPartAndVendor(const std::string& part, const std::string& vendor,
                                                 Texts& out) {
    appendBoards({.part = part, .vendor = vendor}, out);
}

void HMAVPlatformUtils::getRuntimes(Texts& out) {
    out.insert(out.end(), {"ocl", "cpp"});
}

void HMAVPlatformUtils::getRuntimesByPrettyName(Texts& out) {
    out.insert(out.end(), {"OpenCL", "C/C++"});
}

void HMAVPlatformUtils::getRuntimes(const std::string& name, Texts& out) {
    if (const auto* const software = softwareOf(name)) software->getSupportedRuntimes(out);
}

void HMAVPlatformUtils::getRuntimesByPrettyName(const std::string& name, Texts& out) {
    if (const auto* const software = softwareOf(name)) {
        software->getSupportedRuntimesByPrettyName(out);
    }
}

std::size_t HMAVPlatformUtils::getNumRuntimes(const std::string& name) {
    const auto* const software = softwareOf(name);
    return software != nullptr ? software->getNumRuntimes() : 0;
}

bool HMAVPlatformUtils::supportsMultipleRuntimes(const std::string& name) {
    return getNumRuntimes(name) > 1;
}

bool HMAVPlatformUtils::isProcessorGroupRelevant(const std::string& name) {
    const auto* const software = softwareOf(name);
    HSTVector<HMAVSystemConfig*> configs;
    if (software != nullptr) software->getSystemConfigs(configs);
    return std::any_of(configs.begin(), configs.end(), [](const HMAVSystemConfig* config) {
        HSTVector<HMAVProcessorGroup*> groups;
        config->getProcessorGroups(groups);
        return !groups.empty();
    });
}

bool HMAVPlatformUtils::isLinuxRootFSPathRelevant(const std::string& name) {
    const auto* const software = softwareOf(name);
    Texts configs;
    return software != nullptr && software->getSystemConfigNames(configs, "shared") > 0;
}

bool HMAVPlatformUtils::isFixedPlatform(const std::string& name) {
    const HMAVPlatform* const platform = getPlatform(name);
    return platform != nullptr && platform->isFixed();
}

bool HMAVPlatformUtils::isExpandablePlatform(const std::string& name) {
    const HMAVPlatform* const platform = getPlatform(name);
    return platform != nullptr && platform->isExpandable();
}

bool HMAVPlatformUtils::isUnifiedPlatform(const std::string& name) {
    const HMAVPlatform* const platform = getPlatform(name);
    return platform != nullptr && platform->isUnified();
}

bool HMAVPlatformUtils::isKOBPlatform(const std::string& name) {
    const HMAVHardwarePlatform* const hardware = hardwareOf(name);
    return hardware != nullptr && hardware->hasFile("HPFM");
}

bool HMAVPlatformUtils::isPelluxPlatform(const std::string& name) {
    const HMAVPlatform* const platform = getPlatform(name);
    return platform != nullptr && platform->getTypeString() == "pellux";
}

void HMAVPlatformUtils::getAllLibraryTypes(Texts& out) {
    out.insert(out.end(), {"c-callable", "shared", "static"});
}

std::string HMAVPlatformUtils::getPrettyNameForLibType(const std::string& type) {
    if (type == "c-callable") return "C-Callable Library";
    if (type == "shared") return "Shared Library";
    return type == "static" ? "Static Library" : type;
}

std::string HMAVPlatformUtils::getPrettyNameForProductType(const std::string& type) {
    if (type == "pellux") return "Pellux";
    return type == "quorin" ? "Quorin" : "Mav";
}
