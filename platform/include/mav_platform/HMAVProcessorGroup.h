// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A processor group (domain) of a system configuration: its processor, operating system and tool
/// options. Created and owned by the configuration.
class MAV_API HMAVProcessorGroup : public mav_platform::JSONSerializable {
  public:
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    ~HMAVProcessorGroup() override;
    virtual std::string getName() const { return name_; }
    /// The pretty name, else the name.
    virtual std::string getPrettyName() const { return prettyName_.empty() ? name_ : prettyName_; }
    virtual std::string getCpuType() const { return cpuType_; }
    virtual std::string getArch() const { return arch_; }
    virtual std::string getCpuInstance() const { return cpuInstance_; }
    virtual std::string getOSName() const { return osName_; }
    virtual bool IsHypervisorGuest() const { return hypervisorGuest_; }
    virtual std::string getOSPrettyName() const { return osPrettyName_; }
    virtual std::string getIncludePaths() const { return includePaths_; }
    virtual std::string getLibraryPaths() const { return libraryPaths_; }
    virtual std::string getBSPIncludePaths() const { return bspIncludePaths_; }
    virtual std::string getBSPLibraryPaths() const { return bspLibraryPaths_; }
    virtual std::string getCompilerOptions() const { return compilerOptions_; }
    virtual std::string getLinkerOptions() const { return linkerOptions_; }
    virtual std::string getSysRoot() const { return sysRoot_; }
    virtual void setName(std::string value) { name_ = std::move(value); }
    virtual void setPrettyName(std::string value) { prettyName_ = std::move(value); }
    virtual void setCpuInstance(std::string value) { cpuInstance_ = std::move(value); }
    virtual void setCpuType(std::string value) { cpuType_ = std::move(value); }
    virtual void setArch(std::string value) { arch_ = std::move(value); }
    virtual void setOSName(std::string value) { osName_ = std::move(value); }
    virtual void setOSPrettyName(std::string value) { osPrettyName_ = std::move(value); }
    virtual void setIncludePaths(std::string value) { includePaths_ = std::move(value); }
    virtual void setLibraryPaths(std::string value) { libraryPaths_ = std::move(value); }
    virtual void setBSPIncludePaths(std::string value) { bspIncludePaths_ = std::move(value); }
    virtual void setBSPLibraryPaths(std::string value) { bspLibraryPaths_ = std::move(value); }
    virtual void setCompilerOptions(std::string value) { compilerOptions_ = std::move(value); }
    virtual void setLinkerOptions(std::string value) { linkerOptions_ = std::move(value); }
    virtual void setSysRoot(std::string value) { sysRoot_ = std::move(value); }
    virtual void setHypervisorGuest(bool value) { hypervisorGuest_ = value; }

  private:
    std::string name_;
    std::string prettyName_;
    std::string cpuType_;
    std::string cpuInstance_;
    std::string arch_;
    std::string osName_;
    std::string osPrettyName_;
    std::string includePaths_;
    std::string libraryPaths_;
    std::string bspIncludePaths_;
    std::string bspLibraryPaths_;
    std::string compilerOptions_;
    std::string linkerOptions_;
    std::string sysRoot_;
    bool hypervisorGuest_ = false;
};
