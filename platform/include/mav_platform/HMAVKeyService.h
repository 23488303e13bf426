// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "mav_host/Export.h"

namespace mav_platform {
class PlatformLoader;
}

namespace mav::platform {

/// Lists the keys of a platform's document. Holds no data.
/// NativeKeyService says what each operation does.
class MAV_API KeyService {
  public:
    using ptree = boost::property_tree::ptree;
    using PlatformLoader = mav_platform::PlatformLoader;

    virtual ~KeyService();

    virtual ptree get(PlatformLoader* loader) const = 0;
    virtual ptree get(const std::string& platformFile) const = 0;
    virtual ptree get(const ptree& document) const = 0;
    virtual std::string getAsJsonStr(PlatformLoader* loader) const = 0;
    virtual std::string getAsJsonStr(const std::string& platformFile) const = 0;

  protected:
    KeyService() = default;
    KeyService(const KeyService&) = default;
    KeyService& operator=(const KeyService&) = default;
};

}  // namespace mav::platform
