// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// What the bus interfaces of an hpfm document offer and refer to.
struct HpfmNames {
    struct Reference {
        std::string bus, clock, reset;  ///< clock and reset are empty when there is none
        std::size_t line = 0, column = 0;
    };
    struct Named {
        std::string name;
        Place place;
    };
    struct DefaultClock {
        unsigned id = 0;
        std::size_t line = 0, column = 0;
    };
    std::string part;  ///< of the device
    Place partPlace;
    std::set<std::string> clocks;
    std::set<std::string> clockIds;
    std::set<std::string> resets;
    std::map<std::string, std::size_t> buses;  ///< lines of the bus interfaces by name
    std::set<std::string> instances;           ///< of the bus interfaces
    std::vector<Named> regions;                ///< super logic regions that are named
    std::vector<Named> connected;              ///< bus interfaces that NoC records name
    std::vector<Reference> references;
    std::vector<DefaultClock> defaultClocks;
};

/// The document by itself; nothing after a finding when it does not bind. A document with faults
/// refers to nothing: what it names may be what a fault concerns.
std::optional<HpfmNames> checkHpfm(std::string_view text, const std::string& file, Report& report);

}  // namespace mav_platform::check
