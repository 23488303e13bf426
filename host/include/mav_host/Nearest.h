// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mav_host/Export.h"

namespace mav_host {

/// The candidate nearest to a mistyped word, leading dashes left aside; empty when none is near: at
/// most one slip (a letter added, lost, changed, or two swapped) for every three letters typed, one
/// slip at least. Of equally near candidates the first wins.
MAV_API std::string nearest(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace mav_host
