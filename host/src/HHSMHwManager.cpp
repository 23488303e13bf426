// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HHSMHwManager.h"

#include <utility>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"

namespace {

HHSMHwManager* theManager = nullptr;

/// What the default host knows of a hardware definition: that it is there.
class NamedHwDb final : public HHSMHwDb {
  public:
    explicit NamedHwDb(std::string name) : name_(std::move(name)) {}
    std::string getName() const override { return name_; }

  private:
    std::string name_;
};

}  // namespace

HHSMHwDb::~HHSMHwDb() = default;

HHSMHwManager::~HHSMHwManager() = default;

std::shared_ptr<HHSMHwDb> HHSMHwManager::open(const std::string& archive,
                                              const std::string& module) {
    try {
        const mav_host::ZipArchive zip(archive);
        if (!zip.contains("hwdef.xml") && !zip.contains("sysdef.xml")) return nullptr;
    } catch (const HEXError&) {
        return nullptr;
    }
    return std::make_shared<NamedHwDb>(HUTPathUtils::stem(archive) + "_" + module);
}

HHSMHwManager& HHSMHwManager::get() {
    static HHSMHwManager standard;
    return theManager != nullptr ? *theManager : standard;
}

HHSMHwManager* HHSMHwManager::set(HHSMHwManager* manager) {
    HHSMHwManager* const before = theManager;
    theManager = manager;
    return before;
}
