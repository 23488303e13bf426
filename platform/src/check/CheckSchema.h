// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace mav_platform::check {

/// Text of the schema `name` (without ".schema.json"), which the build takes from
/// platform/schema; empty for an unknown name.
std::string_view schemaText(const std::string& name);

}  // namespace mav_platform::check
