// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVSystemConfig.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/OwnedList.h"

/// The software side of a platform: its system configurations. Created by
/// HMAVPlatform::createMutableSoftwarePlatform and owned by that platform.
///
/// Look-ups by name compare exactly and the last match wins; list questions append to `out`.
class MAV_API HMAVSoftwarePlatform : public mav_platform::JSONSerializable {
  public:
    HMAVSoftwarePlatform();
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    ~HMAVSoftwarePlatform() override;

    /// Appends an empty configuration, owned by this platform, and answers it.
    HMAVSystemConfig* addSystemConfig() { return systemConfigs_.add(); }
    void getSystemConfigs(HSTVector<HMAVSystemConfig*>& out) const;
    /// The first configuration; null when there is none.
    HMAVSystemConfig* getSystemConfig() const;
    /// The configuration of that name or pretty name; null when there is none. The two ask the
    /// same.
    HMAVSystemConfig* getSystemConfigByName(const std::string& name) const;
    HMAVSystemConfig* getSystemConfigByPrettyName(const std::string& name) const;
    /// The one that the default name finds, else the first; null when there are none.
    HMAVSystemConfig* getDefaultSystemConfig() const;
    /// The stored name, whether it finds one or not, else that of the default configuration.
    std::string getDefaultConfigName() const;
    void setDefaultConfigName(std::string name) { defaultConfigName_ = std::move(name); }
    const std::string& getLinuxRootFileSystemPath() const { return linuxRootFileSystemPath_; }
    void setLinuxRootFileSystemPath(std::string path) {
        linuxRootFileSystemPath_ = std::move(path);
    }

    /// Runtime keys of all configurations, each once, in order of first appearance.
    void getSupportedRuntimes(HSTVector<std::string>& out) const;
    void getSupportedRuntimesByPrettyName(HSTVector<std::string>& out) const;
    std::size_t getNumRuntimes() const;
    /// True for "ocl", "OpenCL", "cpp" and "C/C++" in any letter case; the configurations are not
    /// asked.
    static bool isRuntimeSupported(const std::string& runtime);
    /// False when no configuration has that name; true for one without runtimes, or with one that
    /// isRuntimeSupported knows.
    bool isSystemConfigSupported(const std::string& name) const;
    /// Appends the names of the configurations that can hold a library of that type and answers the
    /// size of `out`. "shared" asks for a linux processor group, "c-callable" for a standalone one,
    /// "static" for either; case is ignored. An empty type takes every configuration, an unknown
    /// one none.
    std::size_t getSystemConfigNames(HSTVector<std::string>& out, const std::string& libType) const;

  private:
    OwnedList<HMAVSystemConfig> systemConfigs_;
    std::string defaultConfigName_;
    std::string linuxRootFileSystemPath_;
};
