// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A boot image of a system configuration. Created and owned by the configuration.
class MAV_API HMAVBootImg : public mav_platform::JSONSerializable {
  public:
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    ~HMAVBootImg() override;
    virtual std::string getName() const { return name_; }
    virtual std::string getType() const { return type_; }
    virtual std::string getBif() const { return bif_; }
    virtual std::string getImgData() const { return imgData_; }
    virtual std::string getBootMode() const { return bootMode_; }
    virtual std::string getRootFS() const { return rootFS_; }
    virtual std::string getMountPath() const { return mountPath_; }
    virtual std::string getReadMe() const { return readMe_; }
    virtual std::string getQemuArgs() const { return qemuArgs_; }
    virtual std::string getQemuBoot() const { return qemuBoot_; }
    virtual std::string getQemuDevTree() const { return qemuDevTree_; }
    virtual std::string getHwBootBin() const { return hwBootBin_; }
    virtual void setName(std::string value) { name_ = std::move(value); }
    virtual void setType(std::string value) { type_ = std::move(value); }
    virtual void setBif(std::string value) { bif_ = std::move(value); }
    virtual void setImgData(std::string value) { imgData_ = std::move(value); }
    virtual void setBootMode(std::string value) { bootMode_ = std::move(value); }
    virtual void setRootFS(std::string value) { rootFS_ = std::move(value); }
    virtual void setMountPath(std::string value) { mountPath_ = std::move(value); }
    virtual void setReadMe(std::string value) { readMe_ = std::move(value); }
    virtual void setQemuArgs(std::string value) { qemuArgs_ = std::move(value); }
    virtual void setQemuBoot(std::string value) { qemuBoot_ = std::move(value); }
    virtual void setQemuDevTree(std::string value) { qemuDevTree_ = std::move(value); }
    virtual void setHwBootBin(std::string value) { hwBootBin_ = std::move(value); }

  private:
    std::string name_;
    std::string type_;
    std::string bif_;
    std::string imgData_;
    std::string bootMode_;
    std::string rootFS_;
    std::string mountPath_;
    std::string readMe_;
    std::string qemuArgs_;
    std::string qemuBoot_;
    std::string qemuDevTree_;
    std::string hwBootBin_;
};
