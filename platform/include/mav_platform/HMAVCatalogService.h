// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

namespace mav_platform {
class PlatformLoader;
}

namespace mav::platform {

/// Tells whether the running tool supports a platform, and sums a platform up. Holds no data.
/// NativeCatalogService says what each operation does.
class MAV_API CatalogService {
  public:
    using ptree = boost::property_tree::ptree;
    using PlatformLoader = mav_platform::PlatformLoader;

    virtual ~CatalogService();

    virtual bool isUnderWarranty(PlatformLoader* loader, std::string& reason,
                                 std::string productName = "") const = 0;
    virtual bool isUnderWarranty(const std::string& path, std::string& reason,
                                 std::string productName = "") const = 0;
    virtual bool isUnderWarranty(const std::string& path, HSTVector<std::string>& reasons,
                                 std::string productName = "") const = 0;
    virtual bool isPreSynthPlatform(PlatformLoader* loader) const = 0;
    virtual bool isPreSynthPlatformSupported(PlatformLoader* loader, std::string& reason) const = 0;
    virtual bool isPreSynthPlatformSupported(const std::string& path,
                                             std::string& reason) const = 0;
    virtual bool canDsaBeOpened(PlatformLoader* loader, std::string& reason) const = 0;
    virtual bool canDsaBeOpened(const std::string& path, std::string& reason) const = 0;

    virtual std::string getAsJsonStr(PlatformLoader* loader, bool warranty,
                                     bool partitions) const = 0;
    virtual std::string getAsJsonStr(const std::string& path, bool warranty,
                                     bool partitions) const = 0;
    virtual std::string getAllAsJsonStr(const std::string& directories, bool warranty,
                                        bool partitions) const = 0;
    virtual std::string getValue(PlatformLoader* loader, const std::string& keyPath) const = 0;
    virtual std::string getValue(const std::string& path, const std::string& keyPath) const = 0;

  protected:
    CatalogService() = default;
    CatalogService(const CatalogService&) = default;
    CatalogService& operator=(const CatalogService&) = default;
};

}  // namespace mav::platform
