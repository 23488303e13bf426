// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

class HMAVHardwarePlatform;

/// Reads the partitions file of an array-engine project; docs/formats/dpe_partitions.md describes
/// it.
class MAV_API HMAVDpePartitionsJsonReader {
  public:
    /// The platform stays owned by the caller and outlives the reader. It is const because its
    /// partitions are read on the first question for them.
    explicit HMAVDpePartitionsJsonReader(const HMAVHardwarePlatform* platform)
        : platform_(platform) {}

    /// Appends the partitions of the file in its order, without those that equal one that is there.
    /// A path that is no file changes nothing. Throws HEXAlgException "An error occurred while
    /// parsing the dpe partitions json file: " + path; the list is then as it was.
    void parse(const std::string& path);
    /// The same for a copy of what `place` names; the text then ends with that.
    void parse(const std::string& path, const std::string& place);

  private:
    const HMAVHardwarePlatform* platform_;
};
