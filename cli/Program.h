// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>

#include "Command.h"

namespace cli {

/// Parses the command line, runs the command that it names and answers with the exit code. What
/// ends a command early is told on standard error.
int runProgram(std::span<const Row> table, int argc, char** argv);

}  // namespace cli
