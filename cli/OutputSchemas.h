// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace cli {

/// The JSON Schema of what a command prints with --json, which the build takes from
/// platform/schema/output; empty for a command without one.
std::string_view outputSchema(const std::string& command);

}  // namespace cli
