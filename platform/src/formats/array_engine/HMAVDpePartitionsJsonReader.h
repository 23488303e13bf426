// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>
#include <string>

class HMAVDpePartition;

/// Reads the partitions file of an array-engine project; docs/formats/dpe_partitions.md describes
/// it.
class HMAVDpePartitionsJsonReader {
  public:
    /// `partitions` are a hardware platform's root partitions; they outlive the reader.
    explicit HMAVDpePartitionsJsonReader(std::list<HMAVDpePartition>& partitions)
        : partitions_(partitions) {}

    /// Appends the partitions of the file in its order, without those that equal one that is there.
    /// A path that is no file changes nothing. Throws HEXAlgException "An error occurred while
    /// parsing the dpe partitions json file: " + path; the list is then as it was.
    void parse(const std::string& path);

  private:
    std::list<HMAVDpePartition>& partitions_;
};
