// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mav_host/xml/Binding.h"

/// The hardware platform metadata (hpfm) as plain structs; docs/formats/hpfm.md describes the
/// format. Items that the model does not hold are accepted and dropped.
namespace mav_platform::lmx {

/// Name of the bus interface whose address segments are the banks of the HBM.
inline constexpr std::string_view HBM_SUBSYSTEM = "hbm_memory_subsystem";

struct HpfmDeviceInfo {
    std::size_t line = 0;
    std::size_t column = 0;
    std::string name;
    std::string architecture;
    std::string device;
    std::string package;
    std::string speedGrade;
};

struct HpfmClock {
    std::size_t line = 0;
    std::size_t column = 0;
    std::string name;
    std::optional<unsigned> id;
    std::string frequency;
    std::string period;
    std::string status;
    std::string componentRef;
    std::string instanceRef;
    std::string accepted;
};

struct HpfmSystemClocks {
    std::size_t line = 0;
    std::size_t column = 0;
    std::optional<unsigned> defaultClock;
    std::vector<HpfmClock> clocks;
};

struct HpfmRegisteredDevices {
    std::string accepted;
};

struct HpfmPlatformInfo {
    std::string description;
    std::optional<HpfmDeviceInfo> deviceInfo;
    HpfmSystemClocks systemClocks;
    HpfmRegisteredDevices registeredDevices;
};

struct HpfmAddressSegment {
    std::size_t line = 0;
    std::size_t column = 0;
    std::string name;
    std::string baseName;
    unsigned index = 0;
    std::string instanceRef;
    std::string memoryInstance;
    std::string slr;
    std::string spTag;
    std::string automatic;  ///< "qd:auto"
    unsigned maxMasters = 0;
    std::string region;
    unsigned readBwUsed = 0;
    unsigned writeBwUsed = 0;
    unsigned interleave = 0;
};

struct HpfmBusInterface {
    std::size_t order = 0;  ///< place among all elements of the document
    std::size_t line = 0;
    std::size_t column = 0;
    std::string name;
    std::string mode;
    std::string busTypeRef;
    std::string busInterfaceRef;
    std::string componentRef;
    std::string instanceRef;
    std::string clockRef;
    std::string resetRef;
    std::string memPort;
    std::string spTag;
    std::string slr;
    std::string memoryInstance;
    int dataWidth = 0;
    unsigned idBits = 0;
    std::string direction;
    std::string isrId;
    std::string category;
    std::string accepted;
    std::vector<HpfmAddressSegment> addressSegments;
};

struct HpfmParameter {
    std::string name;
    std::string value;
    std::string isValid;
    std::string componentRef;
    std::string instanceRef;
};

struct HpfmResourceEstimates {
    std::string accepted;
};

/// The name of a connected bus interface: the attribute, else the element's text.
struct HpfmConnectedInterface {
    std::size_t line = 0;
    std::size_t column = 0;
    std::optional<std::string> name;
    std::string text;
};

struct HpfmNocConnectivity {
    std::string instanceRef;
    std::vector<HpfmConnectedInterface> busInterfaces;
};

struct HpfmComponent {
    std::size_t order = 0;
    std::string accepted;
    HpfmPlatformInfo platformInfo;
    std::vector<HpfmBusInterface> busInterfaces;
    std::vector<HpfmParameter> parameters;
    HpfmResourceEstimates resourceEstimates;
    std::vector<HpfmNocConnectivity> nocConnectivity;
};

struct HpfmRepository {
    std::string accepted;
    std::vector<HpfmComponent> components;
    std::vector<HpfmBusInterface> busInterfaces;  ///< those directly under the root
};

/// The format of the document. Built once, on first use.
const mav_host::xml::Format<HpfmRepository>& hpfmFormat();

}  // namespace mav_platform::lmx
