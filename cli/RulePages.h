// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace cli {

/// The page about a rule of `mav validate`, which the build takes from docs/rules; empty for an
/// unknown rule.
std::string_view rulePage(const std::string& rule);

}  // namespace cli
