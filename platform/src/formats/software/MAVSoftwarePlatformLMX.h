// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "mav_host/xml/Binding.h"

/// The software platform file (.spfm) as plain structs; docs/formats/spfm.md describes the format.
/// Of mav:os only what the model holds is bound; the rest is accepted and dropped.
namespace mav_platform::lmx {

struct OperatingSystem {
    std::string name;
    std::string displayName;
    std::string includePaths;
    std::string libraryPaths;
    std::string compilerOptions;
    std::string linkerOptions;
    std::string accepted;  ///< attributes of the format that the model does not take
};

struct ProcessorGroup {
    std::string name;
    std::string displayName;
    std::string cpuType;
    std::string cpuInstance;
    std::string architecture;
    OperatingSystem os;
    std::size_t line = 0;
    std::size_t column = 0;
};

struct BootImage {
    std::string name;
    std::string type;
    std::string bif;
    std::string imageData;
    std::string bootmode;
    std::string rootfs;
    std::string mountPath;
    std::string readme;
    std::string qemuArguments;
    std::string qemuBoot;
    std::string qemuDevicetree;
    std::string hwBootBin;
};

struct BootImages {
    std::string defaultImage;
    BootImage image;
};

struct Prebuilt {
    std::string data;
};

struct SystemConfiguration {
    std::string name;
    std::string displayName;
    std::string defaultProcessorGroup;
    std::string runtimes;
    std::string description;
    std::optional<Prebuilt> prebuilt;
    std::vector<ProcessorGroup> processorGroups;
    std::optional<BootImages> bootImages;
    std::size_t line = 0;
    std::size_t column = 0;
};

struct SystemConfigurations {
    std::string defaultConfiguration;
    std::vector<SystemConfiguration> configurations;
    std::size_t line = 0;
    std::size_t column = 0;
};

struct SoftwarePlatform {
    std::string name;
    std::string vendor;
    std::string version;
    std::string schemaVersion;
    std::string library;
    std::string description;
    SystemConfigurations systemConfigurations;
};

/// The format of the file. Built once, on first use.
const mav_host::xml::Format<SoftwarePlatform>& softwarePlatformFormat();

}  // namespace mav_platform::lmx
