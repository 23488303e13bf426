// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVBootImg.h"
#include "mav_platform/HMAVProcessorGroup.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/OwnedList.h"

/// A system configuration of a software platform. Created and owned by the software platform; owns
/// its processor groups and boot images.
///
/// Look-ups by name compare exactly and the last match wins; list questions append to `out`.
class MAV_API HMAVSystemConfig : public mav_platform::JSONSerializable {
  public:
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    ~HMAVSystemConfig() override;
    virtual std::string getName() const { return name_; }
    virtual std::string getDesc() const { return desc_; }
    /// The pretty name, else the name.
    virtual std::string getPrettyName() const { return prettyName_.empty() ? name_ : prettyName_; }
    /// The stored name, else that of the first processor group.
    virtual std::string getDefaultProcGrpName() const;
    virtual std::string getPrebuiltData() const { return prebuiltData_; }
    virtual void getProcessorGroups(HSTVector<HMAVProcessorGroup*>& out) const;
    /// The names that addProcessorGroup(name) recorded.
    virtual void getProcessorGroups(HSTVector<std::string>& out) const;
    /// Runtime keys in order.
    virtual void getRuntimes(HSTVector<std::string>& out) const;
    /// "C/C++" for each key "cpp" in any letter case; nothing for any other key, "ocl" included.
    virtual void getRuntimesByPrettyName(HSTVector<std::string>& out) const;
    /// Null when there is none.
    virtual HMAVProcessorGroup* getProcGrpByName(const std::string& name) const;
    /// The stored name, else that of the first boot image.
    virtual std::string getDefaultBootImgName() const;
    virtual void getBootImgs(HSTVector<HMAVBootImg*>& out) const;
    /// Null when there is none.
    virtual HMAVBootImg* getBootImgByName(const std::string& name) const;
    virtual void setName(std::string value) { name_ = std::move(value); }
    virtual void setDesc(std::string value) { desc_ = std::move(value); }
    virtual void setPrettyName(std::string value) { prettyName_ = std::move(value); }
    virtual void setDefaultProcGrpName(std::string value) {
        defaultProcGrpName_ = std::move(value);
    }
    virtual void setDefaultBootImgName(std::string value) {
        defaultBootImgName_ = std::move(value);
    }
    /// Each appends an empty part, owned by the configuration, and answers it; the form with a name
    /// records the name alone.
    virtual HMAVBootImg* addBootImg() { return bootImgs_.add(); }
    virtual void addProcessorGroup(std::string name);
    virtual HMAVProcessorGroup* addProcessorGroup() { return processorGroups_.add(); }
    virtual void setSupportsQemu(bool value) { supportsQemu_ = value; }
    virtual void addRuntime(std::string key);

    void setPrebuiltData(std::string value) { prebuiltData_ = std::move(value); }
    bool isQemuSupported() const { return supportsQemu_; }

  private:
    std::string name_;
    std::string prettyName_;
    std::string desc_;
    std::string prebuiltData_;
    std::string defaultBootImgName_;
    std::string defaultProcGrpName_;
    bool supportsQemu_ = false;
    HSTVector<std::string> runtimes_;
    HSTVector<std::string> processorGroupNames_;
    OwnedList<HMAVProcessorGroup> processorGroups_;
    OwnedList<HMAVBootImg> bootImgs_;
};
