// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"

class HMAVEmulations;

/// Writes emulation metadata in its XML form. The version text and the feature ROMs have no place
/// in that form and are left out. The emulations stay owned by the caller.
class MAV_API HMAVEmulationXMLWriter {
  public:
    HMAVEmulationXMLWriter(std::string path, const HMAVEmulations* emulations)
        : path_(std::move(path)), emulations_(emulations) {}

    /// Writes the file as a whole; reading it and writing again gives the same text. True after
    /// "@74-10@%s" (file). False after "@74-15@%s%s%s%s" (file, text, and "line N", "column N" for
    /// texts that XML cannot hold, or "writing", "the file is as it was"); an older file is then
    /// untouched.
    bool writeXml();

  private:
    std::string path_;
    const HMAVEmulations* emulations_;
};
