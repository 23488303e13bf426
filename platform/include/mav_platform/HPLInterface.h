// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// An interface of the card to its host.
class MAV_API HPLInterface : public mav_platform::JSONSerializable {
  public:
    const std::string& getId() const { return id_; }
    void setId(std::string value) { id_ = std::move(value); }
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string id_;
    std::string name_;
    std::string type_;
};
