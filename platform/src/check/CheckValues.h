// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/CheckReport.h"

namespace mav_platform::check {

/// Findings "value-change" about archive metadata: texts that are read as something else, and
/// values that contradict the ones beside them.
void checkValues(const LocatedJson& json, Report& report);
/// The same about one clock: its frequency in MHz and its period in ns.
void checkClock(const std::string& frequency, const std::string& period, const Place& atFrequency,
                const Place& atPeriod, Report& report);
/// Findings "vocabulary" about archive metadata: words that no reader knows.
void checkWords(const LocatedJson& json, Report& report);
/// A finding "vocabulary" for a word that is none of the known ones; when these are only some of
/// those that may stand there, for one that is near to them.
void checkWord(std::string_view word, const std::string& called, const Place& place,
               const std::vector<std::string>& known, bool isAll, Report& report);

/// The vocabularies that several formats share.
extern const std::vector<std::string> CLOCK_STATES, BUS_MODES, BUS_CATEGORIES;

}  // namespace mav_platform::check
