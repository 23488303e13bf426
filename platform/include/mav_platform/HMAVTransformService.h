// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "mav_host/Export.h"

namespace mav_platform {
class PlatformLoader;
}

namespace mav::platform {

/// Makes other documents from a platform's document. Holds no data.
/// NativeTransformService says what each operation does.
class MAV_API TransformService {
  public:
    using ptree = boost::property_tree::ptree;
    using PlatformLoader = mav_platform::PlatformLoader;

    virtual ~TransformService();

    virtual std::string getTransformSpecAsJsonStr(const std::string& spec) const = 0;
    virtual ptree getObjectsBySpec(const std::string& platformFile,
                                   const std::string& spec) const = 0;
    virtual ptree getObjectsBySpec(PlatformLoader* loader, const std::string& spec) const = 0;
    virtual std::string getAsJsonStr(const std::string& platformFile,
                                     const std::string& spec) const = 0;
    virtual std::string getAsJsonStr(PlatformLoader* loader, const std::string& spec) const = 0;

  protected:
    TransformService() = default;
    TransformService(const TransformService&) = default;
    TransformService& operator=(const TransformService&) = default;
};

}  // namespace mav::platform
