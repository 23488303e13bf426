// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mav_host/xml/Binding.h"

/// Emulation metadata as plain structs, filled by both of its forms; docs/formats/emulation.md
/// describes them.
namespace mav_platform::lmx {

struct EmulationFile {
    std::string type;
    std::string name;
    std::string instPath;
    std::size_t line = 0;  ///< XML form alone, as is the next
    std::size_t column = 0;
};

struct EmulationFiles {
    std::vector<EmulationFile> files;
};

struct Emulation {
    std::string name;
    EmulationFiles files;
    std::size_t line = 0;  ///< XML form alone, as is the next
    std::size_t column = 0;
};

struct EmulationList {
    std::vector<Emulation> emulations;
};

struct EmulationMetadata {
    std::optional<std::string> pfmMetadataVersion;  ///< JSON form alone
    std::optional<std::uint32_t> versionMajor;      ///< XML form alone, as is the next
    std::optional<std::uint32_t> versionMinor;
    EmulationList emulations;
};

/// The XML form: any root name, prefixes ignored. Built once, on first use.
const mav_host::xml::Format<EmulationMetadata>& emulationFormat();

}  // namespace mav_platform::lmx
