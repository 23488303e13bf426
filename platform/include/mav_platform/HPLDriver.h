// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A driver of the board.
class MAV_API HPLDriver : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string type_;
};
