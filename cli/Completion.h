// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "Command.h"

namespace cli {

// The completion scripts of three shells. Each offers commands, options, choices, file types, files
// and folders; keys are asked of `mav keys` for the file that is typed already.
std::string bashCompletion(const std::vector<Command>& tables);
std::string zshCompletion(const std::vector<Command>& tables);
std::string fishCompletion(const std::vector<Command>& tables);

}  // namespace cli
