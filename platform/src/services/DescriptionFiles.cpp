// SPDX-License-Identifier: Apache-2.0
#include "services/DescriptionFiles.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string_view>

#include "mav_host/HUTFile.h"

namespace mav::platform {

namespace {

namespace fs = std::filesystem;

class Walk {
  public:
    explicit Walk(HSTVector<std::string>& out) : out_(out) {}

    void visit(const std::string& directory) {
        // A directory that links lead to again, also from inside itself, is walked once.
        if (!HUTFile::isDir(directory) ||
            !seen_.insert(HUTFile::getCanonicalName(directory)).second)
            return;
        HSTVector<std::string> names;
        HUTFileUtils::list(directory, names);
        for (const std::string& name : names) {
            const std::string path = (fs::path(directory) / name).string();
            if (HUTFile::isDir(path)) {
                visit(path);
            } else if (HUTPathUtils::extension(path) == ".qpfm" && HUTFile::isFile(path)) {
                out_.push_back(path);
            }
        }
    }

  private:
    HSTVector<std::string>& out_;
    std::set<std::string> seen_;
};

}  // namespace

HSTVector<std::string> descriptionFiles(const std::string& directories) {
    HSTVector<std::string> files;
    Walk walk(files);
    std::string_view rest = directories;
    while (!rest.empty()) {
        const std::string_view directory = rest.substr(0, rest.find(':'));
        if (!directory.empty()) walk.visit(HUTFile::getCanonicalName(std::string(directory)));
        rest.remove_prefix(std::min(directory.size() + 1, rest.size()));
    }
    return files;
}

}  // namespace mav::platform
