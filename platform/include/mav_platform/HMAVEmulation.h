// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVEmulationFile.h"
#include "mav_platform/OwnedList.h"

/// One emulation variant and the archive members that it needs. Created and owned by
/// HMAVEmulations.
class MAV_API HMAVEmulation {
  public:
    /// May be empty.
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    /// Appends a file, owned by the variant, and answers it.
    HMAVEmulationFile* createFile() { return files_.add(); }
    HMAVEmulationFile* createFile(std::string type, std::string name) {
        return files_.add(std::move(type), std::move(name));
    }
    /// The files in the order of addition.
    const HSTVector<HMAVEmulationFile*>& getFiles() const { return files_.items(); }

  private:
    std::string name_;
    OwnedList<HMAVEmulationFile> files_;
};
