// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A named device of the board description.
class MAV_API HMAVDevice : public mav_platform::JSONSerializable {
  public:
    ~HMAVDevice() override;
    virtual const std::string& getName() const = 0;
};
