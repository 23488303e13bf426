// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "mav_host/Export.h"

/// An opened hardware definition of a platform.
class MAV_API HHSMHwDb {
  public:
    virtual ~HHSMHwDb();
    /// Name of the database.
    virtual std::string getName() const = 0;
};

/// Opens hardware definitions. A tool that has a hardware database installs its own manager.
class MAV_API HHSMHwManager {
  public:
    virtual ~HHSMHwManager();
    /// Opens the definition of the archive for one reconfigurable module. Null when it cannot be
    /// opened. The default host opens any archive that holds "hwdef.xml" or "sysdef.xml"; its
    /// database is named after the archive's stem and the module: "STEM_MODULE".
    virtual std::shared_ptr<HHSMHwDb> open(const std::string& archive, const std::string& module);

    static HHSMHwManager& get();
    /// Replaces the manager; null restores the default. It stays owned by the caller and must
    /// outlive its installation. Answers the one in force before (null: the default one).
    static HHSMHwManager* set(HHSMHwManager* manager);
};
