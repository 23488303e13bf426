// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/optional/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "mav_host/Export.h"

namespace mav_platform {
class PlatformLoader;
}

namespace mav::platform {

/// Turns a platform into its JSON document and answers path queries over it. Holds no data.
/// NativeObjectService says what each operation does.
class MAV_API ObjectService {
  public:
    using ptree = boost::property_tree::ptree;
    using PlatformLoader = mav_platform::PlatformLoader;

    virtual ~ObjectService();

    virtual ptree getAsPropertyTree(const std::string& platformFile) const = 0;
    virtual ptree getAsPropertyTree(PlatformLoader* loader) const = 0;
    virtual ptree readJson(const std::string& text) const = 0;
    virtual std::string getAsJsonStr(const std::string& platformFile) const = 0;
    virtual std::string getAsJsonStr(PlatformLoader* loader) const = 0;

    virtual bool hasNodeAtPath(const std::string& platformFile, const std::string& path) const = 0;
    virtual bool hasNodeAtPath(const ptree& tree, const std::string& path) const = 0;
    virtual ptree getNodeByPath(const std::string& platformFile, const std::string& path,
                                bool& found) const = 0;
    virtual ptree getObjectsByPath(const std::string& platformFile, const std::string& path,
                                   bool& found) const = 0;
    virtual ptree getObjectsByPath(PlatformLoader* loader, const std::string& path,
                                   bool& found) const = 0;

    virtual const ptree& getChild(const ptree& tree, const std::string& key) const = 0;
    virtual boost::optional<const ptree&> getChildOptional(const ptree& tree,
                                                           const std::string& key) const = 0;
    virtual std::string getStringValue(const ptree& tree, const std::string& key) const = 0;
    virtual bool getBoolValue(const ptree& tree, const std::string& key) const = 0;
    virtual bool getBoolValue(const ptree& tree, const std::string& key, bool dflt) const = 0;

  protected:
    ObjectService() = default;
    ObjectService(const ObjectService&) = default;
    ObjectService& operator=(const ObjectService&) = default;
};

}  // namespace mav::platform
