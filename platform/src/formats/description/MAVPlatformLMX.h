// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "mav_host/xml/Binding.h"

/// The platform description (.qpfm) as plain structs; docs/formats/qpfm.md describes the format.
namespace mav_platform::lmx {

/// mav:hardwarePlatform, mav:hwEmuPlatform and mav:softwarePlatform.
struct FileReference {
    std::string path;  ///< directory, relative to the one that holds the description
    std::string name;  ///< file in that directory
    std::size_t line = 0;
    std::size_t column = 0;
};

struct ReconfigurablePartition {
    unsigned id = 0;
    std::optional<FileReference> hardwarePlatform;
    std::optional<FileReference> hwEmuPlatform;
    std::size_t line = 0;
    std::size_t column = 0;
};

/// Exactly one alternative: a hardware platform with or without an emulation platform, an emulation
/// platform alone, or partitions.
struct HardwarePlatforms {
    std::optional<unsigned> defaultRP;
    std::optional<FileReference> hardwarePlatform;
    std::optional<FileReference> hwEmuPlatform;
    std::vector<ReconfigurablePartition> reconfigurablePartitions;
    std::size_t line = 0;
    std::size_t column = 0;
};

struct SoftwarePlatforms {
    FileReference softwarePlatform;
};

struct Platform {
    std::string vendor;
    std::string library;
    std::string name;
    mav_host::xml::Decimal version;
    std::string schemaVersion;
    std::string description;
    std::optional<HardwarePlatforms> hardwarePlatforms;  ///< required; the reader checks it
    std::optional<SoftwarePlatforms> softwarePlatforms;
    std::size_t line = 0;
    std::size_t column = 0;
};

/// The format of the file. Built once, on first use.
const mav_host::xml::Format<Platform>& platformFormat();

}  // namespace mav_platform::lmx
