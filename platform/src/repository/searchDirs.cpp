// SPDX-License-Identifier: Apache-2.0
#include "repository/searchDirs.h"

#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"

namespace mav_platform {

HSTVector<std::string> applicationPlatformDirs() {
    static const std::string SEPARATOR = HUTFile::getDirSeparator();
    HSTVector<std::string> roots;
    HUTEnv::getRDIAppRootList(roots);
    HSTVector<std::string> dirs;
    for (const std::string& root : roots) {
        dirs.push_back(root + SEPARATOR + "platforms");
        dirs.push_back(root + SEPARATOR + "base_platforms");
    }
    return dirs;
}

const std::string& systemPlatformDir() {
    static const std::string SEPARATOR = HUTFile::getDirSeparator();
    static const std::string DIR =
        SEPARATOR + "opt" + SEPARATOR + "tarvek" + SEPARATOR + "platforms";
    return DIR;
}

HSTVector<std::string> splitToDirs(const std::string& text) {
    HSTVector<std::string> dirs;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(':', start);
        const bool last = end == std::string::npos;
        dirs.push_back(HUTFile::getCanonicalName(text.substr(start, last ? end : end - start)));
        if (last) return dirs;
        start = end + 1;
    }
}

}  // namespace mav_platform
