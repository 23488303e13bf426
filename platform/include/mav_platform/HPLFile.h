// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A member file of the archive.
class MAV_API HPLFile : public mav_platform::JSONSerializable {
  public:
    /// Path inside the archive.
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    /// Text form of the file type.
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    const std::string& getUsedIn() const { return usedIn_; }
    void setUsedIn(std::string value) { usedIn_ = std::move(value); }
    const std::string& getProcessingOrder() const { return processingOrder_; }
    void setProcessingOrder(std::string value) { processingOrder_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string type_;
    std::string usedIn_;
    std::string processingOrder_;
};
