// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_platform/HMAVDictService.h"

namespace mav::platform {

/// Flat pictures of a node: for every value below it the path from the node to the value, with
/// "[i]" for the elements of lists, and the value's text. A node that is a value itself has the
/// empty name.
///
/// The forms for platforms throw as NativeObjectService does and rewrite paths as it does. All
/// throw HEXAlgException "Failed to read platform: the paths of its description exceed 1024 MiB".
class MAV_API NativeDictService : public DictService {
  public:
    ~NativeDictService() override;

    /// Of the node at the object path; empty with `found` false when there is none.
    Dict getAsDict(const std::string& platformFile, const std::string& path,
                   bool& found) const override;
    Dict getAsDict(PlatformLoader* loader, const std::string& path, bool& found) const;
    /// Empty when the path leads nowhere.
    Dict getAsDict(const ptree& tree, const std::string& path) const override;
    /// Only the listed names. In this path "[*]", "[]" and ".." stand for every element: the names
    /// are those inside each element then, and come out with "[i]." before them.
    Dict getFilteredDict(const std::string& platformFile, const std::string& path,
                         const std::set<std::string>& keys) const override;
    Dict getFilteredDict(PlatformLoader* loader, const std::string& path,
                         const std::set<std::string>& keys) const;

    /// One JSON object with a text member for each entry.
    static std::string getAsJsonStr(const Dict& dict);
};

}  // namespace mav::platform
