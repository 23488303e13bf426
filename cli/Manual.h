// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "Command.h"

namespace cli {

/// The manual page of the program, for mav.1, in the language of man(7). Dates are left out: the
/// same tables give the same bytes.
std::string programPage(const std::vector<Command>& tables);

/// The manual page of one command, for mav-NAME.1.
std::string commandPage(const Command& command);

}  // namespace cli
