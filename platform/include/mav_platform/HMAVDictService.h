// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <set>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
namespace mav_platform {
class PlatformLoader;
}

namespace mav::platform {

/// Flattens parts of a platform's document. Holds no data.
/// NativeDictService says what each operation does.
class MAV_API DictService {
  public:
    using ptree = boost::property_tree::ptree;
    using PlatformLoader = mav_platform::PlatformLoader;

    virtual ~DictService();

    /// Names and values in the order of the document.
    using Dict = HSTVector<std::pair<std::string, std::string>>;

    virtual Dict getAsDict(const std::string& platformFile, const std::string& path,
                           bool& found) const = 0;
    virtual Dict getAsDict(const ptree& tree, const std::string& path) const = 0;
    virtual Dict getFilteredDict(const std::string& platformFile, const std::string& path,
                                 const std::set<std::string>& keys) const = 0;

  protected:
    DictService() = default;
    DictService(const DictService&) = default;
    DictService& operator=(const DictService&) = default;
};

}  // namespace mav::platform
