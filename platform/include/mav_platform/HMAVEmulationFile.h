// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"

/// One archive member that an emulation variant needs. Created and owned by HMAVEmulation.
class MAV_API HMAVEmulationFile {
  public:
    HMAVEmulationFile() = default;
    HMAVEmulationFile(std::string type, std::string name)
        : type_(std::move(type)), name_(std::move(name)) {}

    /// Text of a file type, such as "EMU_HPFM" or "TOP_BD"; any text is kept.
    const std::string& getType() const { return type_; }
    void setType(std::string value) { type_ = std::move(value); }
    /// Path of the member inside the archive.
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    /// Instance path in the design; may be empty.
    const std::string& getInstPath() const { return instPath_; }
    void setInstPath(std::string value) { instPath_ = std::move(value); }

  private:
    std::string type_;
    std::string name_;
    std::string instPath_;
};
