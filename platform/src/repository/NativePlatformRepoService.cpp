// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/NativePlatformRepoService.h"

#include <ostream>
#include <set>

#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Letters.h"
#include "mav_host/Printable.h"
#include "repository/searchDirs.h"

namespace mav::platform {

PlatformRepoService::~PlatformRepoService() = default;

NativePlatformRepoService::~NativePlatformRepoService() = default;

void NativePlatformRepoService::getDefaultPlatformLookupDirs(std::vector<std::string>& out) {
    addIfExists_(mav_platform::systemPlatformDir(), out);
    for (const std::string& dir : mav_platform::applicationPlatformDirs()) addIfExists_(dir, out);
}

std::string NativePlatformRepoService::getPlatformRepoPath(std::vector<std::string>& dirs,
                                                           bool withDefaults) {
    std::vector<std::string> all = dirs;
    if (withDefaults) getDefaultPlatformLookupDirs(all);
    std::set<std::string> kept;
    std::string path;
    for (const std::string& dir : all) {
        if (!HUTFile::isDir(dir)) continue;
        const auto [name, isNew] = kept.insert(HUTFile::getCanonicalName(dir));
        if (isNew) path += (kept.size() > 1 ? ":" : "") + *name;
    }
    return path;
}

void NativePlatformRepoService::getQpfmFiles(const std::string& name, const std::string& repoPath,
                                             std::vector<std::string>& out) {
    std::vector<std::string> dirs;
    splitToFullDirs_(repoPath, dirs);
    getQpfmFiles(name, dirs, false, out);
}

void NativePlatformRepoService::getQpfmFiles(const std::string& name,
                                             const std::vector<std::string>& dirs, bool firstOnly,
                                             std::vector<std::string>& out) {
    if (HUTFile::isFile(name)) {
        out.push_back(HUTFile::getCanonicalName(name));
        return;
    }
    const auto visit = [&](const HUTDirWalk::Entry& entry) {
        if (entry.isDir || HUTPathUtils::extension(entry.path) != ".qpfm") return true;
        if (!name.empty() && !mav_host::equalLetters(name, HUTPathUtils::stem(entry.path)))
            return true;
        out.push_back(entry.path);
        return !firstOnly;
    };
    for (const std::string& dir : dirs) {
        if (!HUTFile::isDir(dir)) continue;
        try {
            if (!HUTDirWalk::walk(dir, {.followLinks = true}, visit)) return;
        } catch (const std::exception& error) {
            mav_host::shownErrors() << "Exception: " << error.what() << std::endl;
        }
    }
}

void NativePlatformRepoService::splitToFullDirs_(const std::string& text,
                                                 std::vector<std::string>& out) {
    const HSTVector<std::string> dirs = mav_platform::splitToDirs(text);
    out.insert(out.end(), dirs.begin(), dirs.end());
}

void NativePlatformRepoService::addIfExists_(const std::string& path,
                                             std::vector<std::string>& out) {
    if (HUTFile::exists(path)) out.push_back(HUTFile::getCanonicalName(path));
}

}  // namespace mav::platform
