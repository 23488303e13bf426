// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "mav_host/Export.h"

namespace mav::platform {

/// Documentation of the keys that a platform's document may hold. Holds no data.
/// NativeDocService says what each operation does.
class MAV_API DocService {
  public:
    using ptree = boost::property_tree::ptree;

    virtual ~DocService();

    virtual bool getFromFile(ptree& doc) const = 0;
    virtual ptree getDocKeyBranch(const ptree& doc, const std::string& key) const = 0;
    virtual bool isValidDocKey(ptree& doc, const std::string& key) const = 0;
    virtual ptree getBranch(const ptree& doc, const std::string& key, bool& found) const = 0;
    virtual std::string getAsJsonStr(const ptree& doc) const = 0;

  protected:
    DocService() = default;
    DocService(const DocService&) = default;
    DocService& operator=(const DocService&) = default;
};

}  // namespace mav::platform
